#include "control/paths.h"

#include <algorithm>

#include "errorlog/errorlog.h"

namespace kestrel {

namespace {

constexpr std::string_view kModule = "TreeView.ctl";

char16_t Separator(PathStyle style) { return style == PathStyle::Windows ? u'\\' : u'/'; }

bool IsAbsolute(std::u16string_view name, PathStyle style) {
    if (style == PathStyle::Windows) return name.size() >= 2 && name[1] == u':';
    return !name.empty() && name[0] == u'/';
}

std::u16string UpOneFolder(PathStyle style) { return style == PathStyle::Windows ? u"..\\" : u"../"; }

}  // namespace

std::u16string ExtractFilename__(std::u16string_view path, int16_t strip, PathStyle style) {
    std::u16string result;
    Trap(kModule, "Function ExtractFilename__", [&] {
        size_t sep = path.rfind(Separator(style));
        std::u16string name(sep == std::u16string_view::npos ? path : path.substr(sep + 1));
        // Cut at the first dot, not the last: "my.proj.kpr" names the project "my".
        if (strip != 0) name = name.substr(0, name.find(u'.'));
        result = std::move(name);
    });
    return result;
}

std::u16string ExtractPath__(std::u16string_view path, PathStyle style) {
    std::u16string result;
    Trap(kModule, "Function ExtractPath__", [&] {
        size_t nameLength = ExtractFilename__(path, 0, style).size();
        if (path.size() > nameLength) result = std::u16string(path.substr(0, path.size() - nameLength));
    });
    return result;
}

std::u16string AbsPath__(std::u16string_view stored, std::u16string_view projectDir, PathStyle style) {
    std::u16string result;
    Trap(kModule, "Function AbsPath__", [&] {
        if (IsAbsolute(stored, style)) {
            result = std::u16string(stored);
            return;
        }
        const char16_t sep = Separator(style);
        const std::u16string up = UpOneFolder(style);
        std::u16string_view dir = projectDir;
        std::u16string_view rest = stored;
        while (rest.substr(0, 3) == up) {
            rest.remove_prefix(3);
            // Climb to the separator before the trailing one; at the root nothing is left
            // to climb and the directory stays.
            for (size_t j = dir.size() >= 2 ? dir.size() - 1 : 0; j-- > 0;) {
                if (dir[j] == sep) {
                    dir = dir.substr(0, j + 1);
                    break;
                }
            }
        }
        // Every file of a loaded project comes through here: one allocation each.
        result.reserve(dir.size() + rest.size());
        result.append(dir).append(rest);
    });
    return result;
}

std::u16string RelativePathToProject__(std::u16string_view full, std::u16string_view projectDir, PathStyle style) {
    std::u16string result;
    Trap(kModule, "Function RelativePathToProject__", [&] {
        const char16_t sep = Separator(style);
        const std::u16string_view p = projectDir;
        const std::u16string d = ExtractPath__(full, style);
        if (style == PathStyle::Windows && d.substr(0, 2) != p.substr(0, 2)) {
            result = std::u16string(full);  // another drive, or the drive letter in another case
            return;
        }
        // i is the 1-based position of the first unit where the two directories differ.
        const size_t m = std::min(d.size(), p.size());
        size_t i = 1;
        while (i <= m && d[i - 1] == p[i - 1]) ++i;
        // Back up to just after the last separator both share. The scan starts before i:
        // starting at i would treat a project folder "s" as the start of a file folder
        // "src" and store a name that never resolves back.
        if (i == 1 || p[i - 2] != sep || d[i - 2] != sep) {
            for (size_t j = i - 1; j >= 1; --j) {
                if (p[j - 1] == sep) {
                    i = j + 1;
                    break;
                }
            }
        }
        for (size_t j = i - 1; j < p.size(); ++j)
            if (p[j] == sep) result += UpOneFolder(style);
        result += d.substr(i - 1);
        result += full.substr(d.size());
    });
    return result;
}

}  // namespace kestrel
