// Comments go; strings, characters and raw strings keep what looks like one.
const char* pattern = "*Test:*Test/*";  /* a real comment */
int after_pattern;
const char slash = '/';
char quote = '"';
int million = 1'000'000;
const char* raw = R"sql(
  /* not a comment */ SELECT { ;
)sql";
int after_raw;
/* a comment that
   runs over lines { */
int after_comment;  // trailing comment {
const char* url = "http://example.org"; int after_url;
