# What is in a header for the compiler alone, and says nothing to a reader. Lines keep their number.
/^extern template/ {
    :more
    /;/! { N; b more }
    s/[^\n]//g
}
/^ *#/! s/TALIEC61850PARSER_EXPORT //
