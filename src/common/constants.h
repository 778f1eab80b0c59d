#pragma once
// Enumerations shared by the scanner, the model and the control.
#include <cstdint>

namespace kestrel {

enum Languages : int32_t {
    LANGUAGE_C = 0,
    LANGUAGE_JAVA = 1,
    LANGUAGE_BASIC = 2,
    LANGUAGE_PASCAL = 3,
    LANGUAGE_UDEFINED = 4,
    LANGUAGE_VBSCRIPT = 5,
    LANGUAGE_JSCRIPT = 6,
    // Modern C++: namespaces, structs, templates and macro-decorated heads.
    LANGUAGE_CPP = 7,
    LANGUAGE_CINCLUDE = 254,
};

enum Scope : int16_t {
    UNKNOWN_SCOPE = 0,
    PUBLIC_SCOPE = 1,
    PROTECTED_SCOPE = 2,
    PRIVATE_SCOPE = 3,
};

enum FileType : int32_t {
    FILETYPE_IMPLEMENTATION = 1,
    FILETYPE_DEFINITION = 2,
    FILETYPE_FORM = 3,
    FILETYPE_NOPARSE = 4,
};

enum SelectedItemType : int32_t {
    ST_UNKNOWN = -1,
    ST_PROJECT = 0,
    ST_CLASS = 1,
    ST_METHODS = 2,
    ST_VARS = 3,
    ST_METHOD = 4,
    ST_VAR = 5,
    ST_FILE = 6,
};

enum ViewStyles : int32_t {
    prvClasses = 0,
    prvFiles = 1,
};

}  // namespace kestrel
