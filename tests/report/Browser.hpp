#pragma once

#include <sys/types.h>

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "support/TempFile.hpp"

namespace TalTest {

/// A browser without a window, driven through a pipe: chromium. One page is open at a time.
class Browser {
public:
    using Json = nlohmann::json;

    /// Whether there is one: the program that TAL_BROWSER names, or chromium.
    [[nodiscard]] static bool isThere();

    /// Starts it.
    /// @throws std::runtime_error  it does not start
    Browser();
    Browser(Browser const&) = delete;
    Browser& operator=(Browser const&) = delete;
    ~Browser();

    /// Opens a page in place of the one before, and waits until it has loaded.
    /// @param link  what comes after the path, such as #t=1
    void open(std::string const& path, std::string const& link = {});
    /// What the page says to an expression of its language; promises are waited for.
    /// @throws std::runtime_error  it throws
    [[nodiscard]] Json ask(std::string const& expression);
    /// The same, where the answer is a text.
    [[nodiscard]] std::string text(std::string const& expression);
    /// The same after the next two pictures are drawn.
    [[nodiscard]] Json askDrawn(std::string const& expression);
    /// Calls a method of the page's protocol.
    Json call(std::string const& method, Json const& arguments = Json::object());

    /// What the page complained of since it was opened: exceptions, errors, refused content.
    [[nodiscard]] std::vector<std::string> const& complaints() const { return complaints_; }
    /// What it asked for since it was opened, besides itself.
    [[nodiscard]] std::vector<std::string> const& requests() const { return requests_; }

private:
    void start();
    Json send(Json message);
    [[nodiscard]] Json receive();
    void note(Json const& event);

    TempDir profile_;
    pid_t process_ = -1;
    int toBrowser_ = -1;
    int fromBrowser_ = -1;
    std::string received_;
    std::uint64_t number_ = 0;
    std::string session_;
    bool isLoaded_ = false;
    std::string page_;
    std::vector<std::string> complaints_;
    std::vector<std::string> requests_;
};

}  // namespace TalTest
