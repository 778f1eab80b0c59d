#include "scanner/line_cleaning.h"

#include <algorithm>
#include <cstdint>

#include "common/byte_shuffles.h"
#include "errorlog/errorlog.h"
#include "scanner/splice_text.h"

namespace kestrel {

namespace {

constexpr std::string_view kModule = "clsQuillbox.cls";

// One comment-removal run over a line whose comment flag is clear. Whichever marker
// comes first decides (the one-line marker where both start at one place): it ends the
// line, or a block opener cuts out the comment it opens. After a cut only the few
// characters around it can form a new marker, so the search goes on from there, and
// the line is read once. Returns true when the line ends inside an open multi-line
// comment.
bool StripComments(SpliceText& text, const SyntaxTable& syntax) {
    const std::u16string& mcs = syntax.MultiCommentStart;
    const std::u16string& mce = syntax.MultiCommentEnd;
    const std::u16string& olc = syntax.OneLineComment;
    constexpr size_t npos = SpliceText::npos;
    const size_t longer = std::max(mcs.size(), olc.size());

    for (size_t from = 0;;) {
        const EarlierFound marker = text.FindEarlier(olc, mcs, from);
        if (marker.at == npos) return false;
        const size_t s = marker.at;
        if (!marker.second) {
            text.Truncate(s);
            return false;
        }
        // Searched from one unit after the opener: "/*/" opens and closes at once.
        const size_t e = text.Find(mce, s + 1);
        if (e == npos) {
            text.Truncate(s);
            return true;
        }
        text.Erase(s, e + mce.size());
        from = SpliceText::JunctionStart(s, longer);
    }
}

}  // namespace

std::string MarkerBytes(std::u16string_view marker) {
    std::string bytes;
    for (char16_t c : marker) {
        if (c >= 128 || c == u' ' || c == u'\t') return {};
        bytes.push_back(static_cast<char>(c));
    }
    return bytes;
}

namespace {

// Lines are cleaned either in place or straight from the bytes of a plain ASCII line,
// each byte one unit; one routine serves both through these loads.
inline char16_t UnitAt(const char16_t* text, size_t i) { return text[i]; }
inline char16_t UnitAt(const unsigned char* bytes, size_t i) { return bytes[i]; }

// A blank is kept, as a space, only right after something that is not a blank, so
// runs of blanks shrink to one and blanks at the start go (`afterBlank` tells what
// came before text[0]). Writes the cleaned units to `to` (which may be `text` itself)
// and answers how many.
template <class Unit>
size_t CleanOneByOne(const Unit* text, size_t n, char16_t* to, bool afterBlank) {
    size_t out = 0;
    for (size_t i = 0; i < n; ++i) {
        // Stored either way, and overwritten by the next unit when it goes: no branch
        // on the characters.
        const char16_t c = UnitAt(text, i);
        const bool blank = c == u' ' || c == u'\t';
        to[out] = blank ? u' ' : c;
        out += !(blank && afterBlank);
        afterBlank = blank;
    }
    return out;
}

#ifdef KESTREL_BYTE_SHUFFLES
// The blanks that go among the ones marked in `blanks` (bit i: place i), given whether
// a blank stands right before place 0.
inline unsigned BlanksThatGo(unsigned blanks, unsigned afterBlank) { return blanks & ((blanks << 1) | afterBlank); }

// Writes the eight units of `units` that `dropped` (bit i: unit i) does not drop, in
// order, to `to`, and answers how many they are. Eight units are written whatever
// the count.
__attribute__((target("ssse3"))) inline size_t KeepOfEight(__m128i units, unsigned dropped, char16_t* to) {
    const __m128i shuffle = _mm_load_si128(reinterpret_cast<const __m128i*>(kKeepShuffles.shuffle[dropped].data()));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm_shuffle_epi8(units, shuffle));
    return kKeepShuffles.kept[dropped];
}

// Eight units at a time up to the last whole eight, the rest one by one. Units are
// read at or after the place they are written to, so cleaning in place is safe.
__attribute__((target("ssse3"))) size_t CleanTextWithShuffles(const char16_t* text, size_t n, char16_t* to) {
    const __m128i space = _mm_set1_epi16(u' '), tab = _mm_set1_epi16(u'\t');
    unsigned afterBlank = 1;
    size_t out = 0;
    size_t i = 0;
    for (; n - i >= 8; i += 8) {
        __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + i));
        const __m128i tabs = _mm_cmpeq_epi16(units, tab);
        units = _mm_or_si128(_mm_andnot_si128(tabs, units), _mm_and_si128(tabs, space));
        const auto blanks =
            static_cast<unsigned>(_mm_movemask_epi8(_mm_packs_epi16(_mm_cmpeq_epi16(units, space), _mm_setzero_si128())));
        out += KeepOfEight(units, BlanksThatGo(blanks, afterBlank) & 0xFFu, to + out);
        afterBlank = blanks >> 7;
    }
    return out + CleanOneByOne(text + i, n - i, to + out, afterBlank != 0);
}

// Sixteen bytes at a time, the blanks told among the bytes, then each half widened and
// squeezed. The bytes are followed by kAsciiLinePadding readable ones, so the last
// sixteen are read whole and what lies past the line is dropped. Up to sixteen units
// are written past the last one kept.
__attribute__((target("ssse3"))) size_t CleanBytesWithShuffles(const unsigned char* bytes, size_t n, char16_t* to) {
    const __m128i space = _mm_set1_epi8(' '), tab = _mm_set1_epi8('\t'), zero = _mm_setzero_si128();
    unsigned afterBlank = 1;
    size_t out = 0;
    for (size_t i = 0; i < n; i += 16) {
        __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes + i));
        const __m128i tabs = _mm_cmpeq_epi8(units, tab);
        units = _mm_or_si128(_mm_andnot_si128(tabs, units), _mm_and_si128(tabs, space));
        const auto blanks = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(units, space)));
        unsigned dropped = BlanksThatGo(blanks, afterBlank);
        if (n - i < 16) dropped |= 0xFFFFu << (n - i);
        afterBlank = blanks >> 15;
        out += KeepOfEight(_mm_unpacklo_epi8(units, zero), dropped & 0xFFu, to + out);
        out += KeepOfEight(_mm_unpackhi_epi8(units, zero), (dropped >> 8) & 0xFFu, to + out);
    }
    return out;
}
#endif

size_t CleanText(const char16_t* text, size_t n, char16_t* to) {
#ifdef KESTREL_BYTE_SHUFFLES
    if (kHasByteShuffles) return CleanTextWithShuffles(text, n, to);
#endif
    return CleanOneByOne(text, n, to, true);
}

size_t CleanBytes(const unsigned char* bytes, size_t n, char16_t* to) {
#ifdef KESTREL_BYTE_SHUFFLES
    if (kHasByteShuffles) return CleanBytesWithShuffles(bytes, n, to);
#endif
    return CleanOneByOne(bytes, n, to, true);
}

}  // namespace

std::u16string& CleanLine(std::u16string& line) {
    line.resize(CleanText(line.data(), line.size(), line.data()));
    return line;
}

std::u16string& CleanLine(std::u16string& line, UnitSet& present) {
    present = UnitSet::Of(CleanLine(line));
    return line;
}

void CleanAsciiLine(std::string_view bytes, std::u16string& line) {
    // Room for the units written past the end. Only what the line grows by is filled
    // in: its old text is written over.
    const size_t n = bytes.size();
    if (line.size() < n + kAsciiLinePadding) line.resize(n + kAsciiLinePadding);
    line.resize(CleanBytes(reinterpret_cast<const unsigned char*>(bytes.data()), n, line.data()));
}

CommentStripper::CommentStripper(const SyntaxTable& syntax)
    : syntax_(syntax),
      opens_(!syntax.MultiCommentStart.empty()),
      ones_(!syntax.OneLineComment.empty()),
      opening_(UnitSet::Of(syntax.MultiCommentStart)),
      oneLine_(UnitSet::Of(syntax.OneLineComment)),
      closing_(UnitSet::Of(syntax.MultiCommentEnd)),
      oneLineBytes_(MarkerBytes(syntax.OneLineComment)),
      endBytes_(MarkerBytes(syntax.MultiCommentEnd)) {}

void CommentStripper::StripTrapped(std::u16string& line, const UnitSet& units) {
    stopped_ = !Trap(kModule, "Sub RemoveComments", [&] { Strip(line, units); });
}

// Called for a line inside a comment, or one that may hold a marker opening one.
void CommentStripper::Strip(std::u16string& line, const UnitSet& units) {
    if (inComment_ && !units.MayHold(closing_)) {
        line.clear();  // the comment cannot end on this line
        return;
    }
    SpliceText text(line);
    if (inComment_) {
        size_t e = text.Find(syntax_.MultiCommentEnd, 0);
        if (e == SpliceText::npos) {
            text.Truncate(0);
        } else {
            text.Erase(0, e + syntax_.MultiCommentEnd.size());
            inComment_ = false;
        }
    }
    if (!inComment_) inComment_ = StripComments(text, syntax_);
    text.Finish();
}

void RemoveComments(std::vector<std::u16string>& lines, int32_t lineCount, const SyntaxTable& syntax,
                    const std::vector<UnitSet>* present) {
    CommentStripper stripper(syntax);
    const UnitSet anything = UnitSet::Anything();
    // A line count past the array is an error of the pass, as one inside a line is.
    Trap(kModule, "Sub RemoveComments", [&] {
        for (int32_t i = 1; i <= lineCount; ++i) {
            const size_t k = static_cast<size_t>(i);
            stripper.StripLine(lines.at(k), present ? (*present)[k] : anything);
        }
    });
}

}  // namespace kestrel
