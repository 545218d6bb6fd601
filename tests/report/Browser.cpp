#include "report/Browser.hpp"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <stdexcept>

namespace TalTest {

namespace {

/// Longer than any step takes on a machine that does much else.
constexpr int kPatience = 120'000;  // milliseconds
/// The descriptors that the browser reads from and writes to.
constexpr int kBrowserReads = 3;
constexpr int kBrowserWrites = 4;

std::string browserPath() {
    if (char const* const named = std::getenv("TAL_BROWSER")) {
        return named;
    }
    for (char const* const path : {"/usr/bin/chromium", "/usr/bin/chromium-browser"}) {
        if (::access(path, X_OK) == 0) {
            return path;
        }
    }
    return {};
}

std::array<int, 2> makePipe() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe for the browser");
    }
    // Not one of the two that the browser is given: moving one there would close the other.
    for (int& end : ends) {
        int const moved = ::fcntl(end, F_DUPFD_CLOEXEC, kBrowserWrites + 1);
        ::close(end);
        end = moved;
    }
    return ends;
}

}  // namespace

bool Browser::isThere() { return !browserPath().empty(); }

Browser::Browser() {
    start();
    session_ = "";
    auto const target =
        send({{"method", "Target.createTarget"}, {"params", {{"url", "about:blank"}}}});
    auto const attached = send({{"method", "Target.attachToTarget"},
                                {"params", {{"targetId", target["targetId"]}, {"flatten", true}}}});
    session_ = attached["sessionId"].get<std::string>();
    for (char const* const domain : {"Page", "Runtime", "Network", "Log"}) {
        call(std::string(domain) + ".enable");
    }
}

Browser::~Browser() {
    ::close(toBrowser_);
    ::close(fromBrowser_);
    if (process_ > 0) {
        ::kill(-process_, SIGKILL);  // it and what it has started
        int status = 0;
        ::waitpid(process_, &status, 0);
    }
}

void Browser::start() {
    auto const commands = makePipe();
    auto const answers = makePipe();
    std::string const path = browserPath();
    std::string const profile = "--user-data-dir=" + profile_.path();
    int const silence = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    process_ = ::fork();
    if (process_ == 0) {
        ::setpgid(0, 0);
        ::dup2(silence, STDOUT_FILENO);
        ::dup2(silence, STDERR_FILENO);
        ::dup2(commands[0], kBrowserReads);
        ::dup2(answers[1], kBrowserWrites);
        ::execl(path.c_str(), path.c_str(), "--headless=new", "--no-sandbox", "--disable-gpu",
                "--hide-scrollbars", "--no-first-run", "--disable-background-networking",
                "--disable-extensions", "--disable-dev-shm-usage", "--remote-debugging-pipe",
                profile.c_str(), "about:blank", nullptr);
        ::_exit(127);
    }
    ::close(silence);
    ::close(commands[0]);
    ::close(answers[1]);
    toBrowser_ = commands[1];
    fromBrowser_ = answers[0];
    if (process_ < 0) {
        throw std::runtime_error("the browser does not start");
    }
}

Browser::Json Browser::receive() {
    while (true) {
        if (auto const end = received_.find('\0'); end != std::string::npos) {
            Json message = Json::parse(received_.substr(0, end));
            received_.erase(0, end + 1);
            return message;
        }
        pollfd ready{.fd = fromBrowser_, .events = POLLIN, .revents = 0};
        std::array<char, 65536> octets{};
        if (::poll(&ready, 1, kPatience) <= 0) {
            throw std::runtime_error("the browser does not answer");
        }
        ssize_t const count = ::read(fromBrowser_, octets.data(), octets.size());
        if (count <= 0 && errno != EINTR) {
            throw std::runtime_error("the browser has ended");
        }
        received_.append(octets.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }
}

void Browser::note(Json const& event) {
    std::string const method = event.value("method", "");
    Json const& about = event.contains("params") ? event["params"] : Json::object();
    if (method == "Page.loadEventFired") {
        isLoaded_ = true;
    } else if (method == "Runtime.exceptionThrown") {
        complaints_.push_back(about.dump());
    } else if (method == "Log.entryAdded" && about["entry"]["level"] != "verbose") {
        complaints_.push_back(about["entry"]["text"].get<std::string>());
    } else if (method == "Runtime.consoleAPICalled") {
        complaints_.push_back(about.dump());
    } else if (method == "Network.requestWillBeSent") {
        std::string const url = about["request"]["url"].get<std::string>();
        // What an address holds itself leaves nothing.
        if (!url.starts_with(page_) && !url.starts_with("data:")) {
            requests_.push_back(url);
        }
    }
}

Browser::Json Browser::send(Json message) {
    message["id"] = ++number_;
    if (!session_.empty()) {
        message["sessionId"] = session_;
    }
    std::string text = message.dump();
    text += '\0';
    for (std::size_t sent = 0; sent < text.size();) {
        ssize_t const count = ::write(toBrowser_, text.data() + sent, text.size() - sent);
        if (count < 0 && errno != EINTR) {
            throw std::runtime_error("the browser does not listen");
        }
        sent += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    }
    while (true) {
        Json answer = receive();
        if (answer.value("id", std::uint64_t{0}) != number_) {
            note(answer);
            continue;
        }
        if (answer.contains("error")) {
            throw std::runtime_error(answer["error"].dump());
        }
        return answer["result"];
    }
}

Browser::Json Browser::call(std::string const& method, Json const& arguments) {
    return send({{"method", method}, {"params", arguments}});
}

void Browser::open(std::string const& path, std::string const& link) {
    call("Page.navigate", {{"url", "about:blank"}});
    while (!isLoaded_) {
        note(receive());
    }
    isLoaded_ = false;
    complaints_.clear();
    requests_.clear();
    page_ = "file://" + path;
    call("Page.navigate", {{"url", page_ + link}});
    while (!isLoaded_) {
        note(receive());
    }
    isLoaded_ = false;
}

Browser::Json Browser::ask(std::string const& expression) {
    Json const answer =
        call("Runtime.evaluate",
             {{"expression", expression}, {"returnByValue", true}, {"awaitPromise", true}});
    if (answer.contains("exceptionDetails")) {
        throw std::runtime_error(expression + ": " + answer["exceptionDetails"].dump());
    }
    return answer["result"].contains("value") ? answer["result"]["value"] : Json();
}

std::string Browser::text(std::string const& expression) {
    Json const answer = ask(expression);
    return answer.is_string() ? answer.get<std::string>() : answer.dump();
}

Browser::Json Browser::askDrawn(std::string const& expression) {
    return ask(
        "new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done)))"
        ".then(() => (" +
        expression + "))");
}

}  // namespace TalTest
