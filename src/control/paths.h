#pragma once
// Path work of the control: file names stored relative to the project directory so a
// project can move with its sources. All comparisons are exact, unit by unit.
//
// Windows style: "\" is the only separator, a name is absolute when its second
// character is ":", and a file on another drive (or the same drive letter in another
// case) is stored unchanged. POSIX style: "/" is the separator, a name is absolute
// when it starts with "/", and there are no drives.
#include <cstdint>
#include <string>
#include <string_view>

namespace kestrel {

enum class PathStyle { Posix, Windows };

// The name after the last separator; with strip non-zero, cut at its first ".".
std::u16string ExtractFilename__(std::u16string_view path, int16_t strip, PathStyle style = PathStyle::Posix);
// The directory part with its trailing separator, or "".
std::u16string ExtractPath__(std::u16string_view path, PathStyle style = PathStyle::Posix);
// A stored name back to a full path; each leading "../" climbs one folder of projectDir.
std::u16string AbsPath__(std::u16string_view stored, std::u16string_view projectDir,
                         PathStyle style = PathStyle::Posix);
// A full path as stored in the project: relative to projectDir where possible.
std::u16string RelativePathToProject__(std::u16string_view full, std::u16string_view projectDir,
                                       PathStyle style = PathStyle::Posix);

}  // namespace kestrel
