#include "scanner/line_cleaning.h"

#include <algorithm>
#include <cstdint>
#include <type_traits>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

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

// The marker as bytes, when a search of a line's raw UTF-8 bytes finds it exactly where
// a search of the cleaned line would: every unit ASCII (so no byte of a longer
// sequence is mistaken for it) and none a blank (which cleaning turns or drops).
std::string MarkerBytes(std::u16string_view marker) {
    std::string bytes;
    for (char16_t c : marker) {
        if (c >= 128 || c == u' ' || c == u'\t') return {};
        bytes.push_back(static_cast<char>(c));
    }
    return bytes;
}

}  // namespace

namespace {

// Which units a line holds, one byte per unit value below 128 and one for every unit
// above: a store per unit does not chain each step of the loop to the one before, as
// setting bits in one word would. A held unit's byte has its top bit set, which is
// what a byte mask reads.
struct SeenUnits {
    static constexpr uint8_t kHeld = 0x80;
    alignas(16) uint8_t seen[144] = {};
    void Add(char16_t c) { seen[c < 128 ? c : 128] = kHeld; }
#if defined(__SSE2__)
    // Eight units, each below 128.
    void AddAscii(__m128i units) {
        seen[_mm_extract_epi16(units, 0)] = kHeld;
        seen[_mm_extract_epi16(units, 1)] = kHeld;
        seen[_mm_extract_epi16(units, 2)] = kHeld;
        seen[_mm_extract_epi16(units, 3)] = kHeld;
        seen[_mm_extract_epi16(units, 4)] = kHeld;
        seen[_mm_extract_epi16(units, 5)] = kHeld;
        seen[_mm_extract_epi16(units, 6)] = kHeld;
        seen[_mm_extract_epi16(units, 7)] = kHeld;
    }
#endif
    void AddTo(UnitSet& set) const {
        uint64_t bits[2] = {0, 0};
#if defined(__SSE2__)
        for (size_t c = 0; c < 128; c += 16) {
            const __m128i bytes = _mm_load_si128(reinterpret_cast<const __m128i*>(seen + c));
            bits[c >> 6] |= uint64_t{static_cast<uint16_t>(_mm_movemask_epi8(bytes))} << (c & 63);
        }
#else
        for (size_t c = 0; c < 128; ++c) bits[c >> 6] |= uint64_t{seen[c] != 0} << (c & 63);
#endif
        set.AddGathered(bits[0], bits[1], seen[128] != 0);
    }
};

constexpr size_t kChunk = 8;

// Lines are cleaned either in place or straight from the bytes of a plain ASCII line,
// each byte one unit; one routine serves both through these loads.
inline char16_t UnitAt(const char16_t* text, size_t i) { return text[i]; }
inline char16_t UnitAt(const unsigned char* bytes, size_t i) { return bytes[i]; }
#if defined(__SSE2__)
inline __m128i LoadChunk(const char16_t* text) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(text)); }
inline __m128i LoadChunk(const unsigned char* bytes) {
    return _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(bytes)), _mm_setzero_si128());
}
#endif

// Where a line's leading blanks end. Indentation is often most of a short line, so
// it is passed over kChunk units at a time.
template <class Unit>
inline size_t IndentationEnd(const Unit* text, size_t n) {
    size_t i = 0;
#if defined(__SSE2__)
    const __m128i space = _mm_set1_epi16(u' '), tab = _mm_set1_epi16(u'\t');
    for (; i + kChunk <= n; i += kChunk) {
        const __m128i units = LoadChunk(text + i);
        const int blanks = _mm_movemask_epi8(_mm_or_si128(_mm_cmpeq_epi16(units, space), _mm_cmpeq_epi16(units, tab)));
        if (blanks != 0xFFFF) return i + static_cast<size_t>(__builtin_ctz(~blanks)) / 2;
    }
#endif
    while (i < n && (UnitAt(text, i) == u' ' || UnitAt(text, i) == u'\t')) ++i;
    return i;
}

// Cleans kChunk units at once when none of them is a blank that goes (one right after
// a blank): tabs become spaces and the units move down to `to`, which never lies after
// the units read when cleaning in place; answers 0. Otherwise writes nothing and
// answers how many units, up to the last blank that goes, must be cleaned one by one.
template <class Unit>
inline size_t CleanChunk(const Unit* from, char16_t* to, bool& afterBlank, SeenUnits* seen) {
#if defined(__SSE2__)
    const __m128i units = LoadChunk(from);
    const __m128i space = _mm_set1_epi16(u' ');
    const __m128i tab = _mm_cmpeq_epi16(units, _mm_set1_epi16(u'\t'));
    const int blanks = _mm_movemask_epi8(_mm_or_si128(_mm_cmpeq_epi16(units, space), tab));  // two bits per unit
    const int blankBefore = (blanks << 2) | (afterBlank ? 3 : 0);
    if (const int going = blanks & blankBefore & 0xFFFF; going != 0) return static_cast<size_t>(32 - __builtin_clz(going)) / 2;
    const __m128i kept = _mm_or_si128(_mm_andnot_si128(tab, units), _mm_and_si128(tab, space));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), kept);
    afterBlank = (blanks & 0x8000) != 0;
    if (seen) {
        // Units below 128 index the table as they stand, taken from the register.
        const __m128i high = _mm_cmpeq_epi16(_mm_srli_epi16(kept, 7), _mm_setzero_si128());
        if (_mm_movemask_epi8(high) == 0xFFFF)
            seen->AddAscii(kept);
        else
            for (size_t k = 0; k < kChunk; ++k) seen->Add(to[k]);
    }
    return 0;
#else
    (void)from, (void)to, (void)afterBlank, (void)seen;
    return kChunk;
#endif
}

#if defined(__SSE2__)
// Nine to sixteen bytes of a plain ASCII line at once (`count`, the rest of a shorter
// line), when none of them is a blank that goes: tabs become spaces, the bytes are
// widened into `to` and recorded, and the answer is true. Otherwise records nothing
// and answers false, leaving them to CleanChunk. Reads sixteen bytes and writes
// sixteen units whatever the count; bytes past it stand in as copies of the first,
// which is recorded anyway.
inline bool CleanWideChunk(const unsigned char* from, size_t count, char16_t* to, bool& afterBlank, SeenUnits& seen) {
    __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
    if (count < 16) {
        const __m128i lanes = _mm_setr_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
        const __m128i inside = _mm_cmplt_epi8(lanes, _mm_set1_epi8(static_cast<char>(count)));
        bytes = _mm_or_si128(_mm_and_si128(inside, bytes), _mm_andnot_si128(inside, _mm_set1_epi8(static_cast<char>(from[0]))));
    }
    const __m128i space = _mm_set1_epi8(' ');
    const __m128i tab = _mm_cmpeq_epi8(bytes, _mm_set1_epi8('\t'));
    const int inLine = static_cast<int>((1u << count) - 1);
    const int blanks = _mm_movemask_epi8(_mm_or_si128(_mm_cmpeq_epi8(bytes, space), tab)) & inLine;  // one bit per unit
    if ((blanks & ((blanks << 1) | (afterBlank ? 1 : 0))) != 0) return false;
    const __m128i kept = _mm_or_si128(_mm_andnot_si128(tab, bytes), _mm_and_si128(tab, space));
    const __m128i low = _mm_unpacklo_epi8(kept, _mm_setzero_si128()), high = _mm_unpackhi_epi8(kept, _mm_setzero_si128());
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), low);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to + kChunk), high);
    afterBlank = ((blanks >> (count - 1)) & 1) != 0;
    seen.AddAscii(low);
    seen.AddAscii(high);
    return true;
}
#endif

// A blank is kept only after something that is not a blank, so leading blanks and
// runs both go. Chunks without such blanks (most of a line past its indentation) go
// through CleanChunk; runs of blanks unit by unit, without branches on the characters.
// Writes the cleaned units to `to` (which may be `text` itself) and answers how many.
// The indentation, up to `i`, goes whole.
template <class Unit>
size_t CleanUnits(const Unit* text, size_t n, size_t i, char16_t* to, SeenUnits* record) {
    size_t out = 0;
    bool afterBlank = true;
    while (i < n) {
#if defined(__SSE2__)
        if constexpr (std::is_same_v<Unit, unsigned char>) {
            // Only plain ASCII lines come as bytes, always recorded and with room for
            // a whole chunk read and written past their end.
            // A shorter rest costs less unit by unit than masked.
            const size_t count = std::min(n - i, 2 * kChunk);
            if (count > kChunk && CleanWideChunk(text + i, count, to + out, afterBlank, *record)) {
                i += count;
                out += count;
                continue;
            }
        }
#endif
        const size_t oneByOne = n - i >= kChunk ? CleanChunk(text + i, to + out, afterBlank, record) : n - i;
        if (oneByOne == 0) {
            i += kChunk;
            out += kChunk;
            continue;
        }
        for (const size_t end = i + oneByOne; i < end; ++i) {
            const char16_t c = UnitAt(text, i);
            const bool blank = c == u' ' || c == u'\t';
            const char16_t kept = blank ? u' ' : c;
            to[out] = kept;
            if (record) record->Add(kept);
            out += !(blank && afterBlank);
            afterBlank = blank;
        }
    }
    return out;
}

std::u16string& Clean(std::u16string& line, UnitSet* present) {
    SeenUnits seen;
    line.resize(CleanUnits(line.data(), line.size(), IndentationEnd(line.data(), line.size()), line.data(),
                           present ? &seen : nullptr));
    if (present) seen.AddTo(*present);
    return line;
}

}  // namespace

std::u16string& CleanLine(std::u16string& line) { return Clean(line, nullptr); }

std::u16string& CleanLine(std::u16string& line, UnitSet& present) { return Clean(line, &present); }

void CleanAsciiLine(std::string_view bytes, std::u16string& line, UnitSet& present, std::string_view emptyingStart) {
    const auto* text = reinterpret_cast<const unsigned char*>(bytes.data());
    const size_t n = bytes.size();
    const size_t from = IndentationEnd(text, n);
    if (!emptyingStart.empty() && n - from >= emptyingStart.size()) {
        size_t k = 0;
        while (k < emptyingStart.size() && bytes[from + k] == emptyingStart[k]) ++k;
        if (k == emptyingStart.size()) {
            line.clear();
            return;
        }
    }
    SeenUnits seen;
    line.resize(n + kAsciiLinePadding);
    line.resize(CleanUnits(text, n, from, line.data(), &seen));
    seen.AddTo(present);
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
