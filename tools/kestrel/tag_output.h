#pragma once
// Writing tags in the forms tools built for Universal Ctags read: the tags file
// (format 2, u-ctags or e-ctags flavour), JSON Lines, and cross-reference lines.
#include <ostream>
#include <string>
#include <vector>

#include "tag_collection.h"

namespace kestrel::cli {

struct TagFormat {
    enum class Output { UCtags, ECtags, Json, Xref } output = Output::UCtags;
    enum class Sort { No, Yes, FoldCase } sort = Sort::Yes;
    enum class Excmd { Number, Pattern, Combine } excmd = Excmd::Pattern;
    // The field letters in force, as --fields names them.
    std::string fields = "knsaSet";
    bool pseudoTags = true;
    std::string xformat = "%-16N %-10K %4n %-16F %C";
};

// Puts the tags in the order the format asks for.
void SortTags(std::vector<Tag>& tags, TagFormat::Sort sort);
// The pseudo-tags, then one line per tag.
void WriteTags(std::ostream& out, const std::vector<Tag>& tags, const TagFormat& format);

}  // namespace kestrel::cli
