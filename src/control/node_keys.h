#pragma once
// The vocabulary of the trees: key markers, fixed texts and image numbers. A node's
// key is the only link from the node back to the model, so every operation that
// builds or decodes keys takes its pieces from here.
#include <cstdint>
#include <string>
#include <string_view>

#include "common/constants.h"

namespace kestrel {

// Class tree key markers: always the first two characters, compared exactly.
inline constexpr std::u16string_view kProjectMarker = u"++";
inline constexpr std::u16string_view kClassMarker = u"--";
inline constexpr std::u16string_view kFunctionsFolderMarker = u"``";
inline constexpr std::u16string_view kVariablesFolderMarker = u"''";
inline constexpr std::u16string_view kFunctionMarker = u"!!";
inline constexpr std::u16string_view kVariableMarker = u"**";
inline constexpr std::u16string_view kPlaceholderMarker = u"[[";
inline constexpr std::u16string_view kMemberSeparator = u"::";

inline constexpr std::u16string_view kPlaceholderText = u"|";
inline constexpr std::u16string_view kFunctionsText = u"Functions";
inline constexpr std::u16string_view kVariablesText = u"Variables";

// Images of the 16 x 16 image list.
inline constexpr int16_t kImageNone = 0;
inline constexpr int16_t kImageClass = 1;
inline constexpr int16_t kImageVariable = 3;  // + 1 protected, + 2 private
inline constexpr int16_t kImageFunction = 6;  // + 1 protected, + 2 private
inline constexpr int16_t kImageProject = 10;
inline constexpr int16_t kImageProjectOpen = 11;

// The file tree's folders by file type; the forms key is capitalised, unlike the others.
struct FileFolder {
    std::u16string_view key;
    std::u16string_view text;
    int16_t image;
};
inline constexpr FileFolder kImplementationFolder{u"implementation", u"Implementation", 12};
inline constexpr FileFolder kDefinitionFolder{u"definition", u"Definition", 13};
inline constexpr FileFolder kFormsFolder{u"Forms", u"Forms", 14};
inline constexpr FileFolder kOtherFolder{u"other", u"Other", 15};

inline const FileFolder& FolderOfType(int32_t fileType) {
    switch (fileType) {
        case FILETYPE_IMPLEMENTATION: return kImplementationFolder;
        case FILETYPE_DEFINITION: return kDefinitionFolder;
        case FILETYPE_FORM: return kFormsFolder;
        default: return kOtherFolder;
    }
}

inline bool HasMarker(std::u16string_view key, std::u16string_view marker) {
    return key.size() >= 2 && key.substr(0, 2) == marker;
}

// The selection kind a class tree key stands for.
inline int32_t SelectedKindOf(std::u16string_view key) {
    if (HasMarker(key, kProjectMarker)) return ST_PROJECT;
    if (HasMarker(key, kClassMarker)) return ST_CLASS;
    if (HasMarker(key, kFunctionsFolderMarker)) return ST_METHODS;
    if (HasMarker(key, kVariablesFolderMarker)) return ST_VARS;
    if (HasMarker(key, kFunctionMarker)) return ST_METHOD;
    if (HasMarker(key, kVariableMarker)) return ST_VAR;
    return ST_UNKNOWN;
}

inline std::u16string MakeKey(std::u16string_view marker, std::u16string_view rest) {
    std::u16string key(marker);
    key += rest;
    return key;
}

}  // namespace kestrel
