#pragma once
// Reader and writer of the project file's two record kinds: a 32-bit little-endian
// number, and a counted string: a 32-bit length, then its text, either one byte per
// code unit (below 256 the unit's value, any other unit '?'; the length counts units)
// or UTF-8 (the length counts bytes), as the file's version says.
//
// Strings are written with at most kMaxStringWrite units or bytes, the rest cut off,
// so that everything written reads back.
//
// Reads never fail: past the end of the file numbers read 0 and missing string bytes
// read NUL. HitEnd() tells that some read came up short, so that record loops of a
// damaged file can stop instead of running through counts the file cannot hold.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "common/text.h"
#include "persist/file_replacement.h"

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace kestrel {

class clsBinaryFile {
public:
    // Strings claiming this many units or more read as empty and consume only the length.
    static constexpr int32_t kMaxStringRead = 32000;
    static constexpr int32_t kMaxStringWrite = kMaxStringRead - 1;

    // How string records hold their text. A file is opened with one byte per unit; the
    // project reader and writer switch to UTF-8 for the files that hold it.
    enum class TextEncoding { OneBytePerUnit, Utf8 };
    void SetTextEncoding(TextEncoding encoding) { encoding_ = encoding; }
    TextEncoding Encoding() const { return encoding_; }
    // Some unit written one byte per unit since opening (or Restart) was 256 or more,
    // and so was written as '?'.
    bool UnitsDidNotFit() const { return unitsDidNotFit_; }

    clsBinaryFile() = default;
    ~clsBinaryFile();
    clsBinaryFile(const clsBinaryFile&) = delete;
    clsBinaryFile& operator=(const clsBinaryFile&) = delete;

    // For writing an existing file is emptied; for reading it must exist. The name is
    // UTF-8 encoded for the system. A handle already held is closed first.
    bool OpenFile(const std::u16string& szFileName, bool OpenForWrite);
    // Starts writing a new version of the file `name` (through symbolic links), which
    // takes the file's place only at CommitReplacement (see FileReplacement). False,
    // errno set, when no new file can be made beside it, also when it is read-only.
    bool OpenReplacement(const std::u16string& name);
    // Writes what is buffered and puts the new version in place of the old file, on the
    // disk, then closes; false when some write or the replacing failed, and the old
    // file is then as it was.
    bool CommitReplacement();
    // Writes what is buffered and closes, back to one byte per unit; false when some
    // write since opening failed. A replacement not committed is dropped.
    bool CloseFile();
    bool IsOpen() const { return fd_ >= 0; }

    // Loading reads tens of thousands of records, so the common case (the record lies
    // in the buffer) stays inline.
    int32_t LoadNumeric() {
        const int32_t value = DecodeNumeric(Window(4).data());
        Skip(4);
        return value;
    }
    std::u16string LoadString();
    // As LoadString, into a string whose room is reused.
    void LoadString(std::u16string& into);
    // The UTF-8 text of a string record, appended to `into`. Sequences of a lone
    // surrogate are accepted: the writer makes them of lone surrogates it is given.
    static void AppendUtf8Text(std::u16string& into, std::string_view bytes) {
        AppendUtf8(into, bytes, EncodedSurrogates::Accepted);
    }
    // The next n bytes in one piece, from the read position on, which does not move:
    // valid until the next read. What lies past the end of the file reads as zeros
    // (and HitEnd). For a reader that takes a whole record in place: it asks for a
    // longer window as it learns the record's lengths, then Skips it.
    std::string_view Window(size_t n) {
        if (buffer_.size() - bufferPos_ < n) WidenWindow(n);
        return {buffer_.data() + bufferPos_, n};
    }
    // Moves the read position on by n bytes of the last Window.
    void Skip(size_t n) { bufferPos_ += n; }
    // The number record at `bytes`.
    static int32_t DecodeNumeric(const char* bytes) {
        const auto* b = reinterpret_cast<const unsigned char*>(bytes);
        return static_cast<int32_t>(uint32_t(b[0]) | uint32_t(b[1]) << 8 | uint32_t(b[2]) << 16 |
                                    uint32_t(b[3]) << 24);
    }
    // A string record's text bytes, each the code unit of its value, written to `to`;
    // answers the end of what was written.
    static char16_t* Widen(std::string_view bytes, char16_t* to) {
        const auto* from = reinterpret_cast<const unsigned char*>(bytes.data());
        const size_t n = bytes.size();
#ifdef __SSE2__
        // Texts are short, so the loop the compiler would make, with its set-up for long
        // runs, costs more than the copying; and a byte loop for the last few units
        // costs more than widening them again as part of a whole step that overlaps the
        // one before.
        if (n >= 8) {
            for (size_t i = 0; i + 8 <= n; i += 8) WidenEight(from + i, to + i);
            if (n % 8 != 0) WidenEight(from + n - 8, to + n - 8);
            return to + n;
        }
        if (n >= 4) {
            WidenFour(from, to);
            WidenFour(from + n - 4, to + n - 4);
            return to + n;
        }
#endif
        for (size_t i = 0; i < n; ++i) to[i] = from[i];
        return to + n;
    }
    // The inverse of Widen: each code unit of `text` as one byte of its value, or '?'
    // when it is 256 or more, written to `to`. Answers whether every unit fitted.
    static bool Narrow(std::u16string_view text, char* to) {
        const char16_t* from = text.data();
        const size_t n = text.size();
#ifdef __SSE2__
        __m128i seen = _mm_setzero_si128();  // every unit narrowed, or-ed together
        if (n >= 8) {
            for (size_t i = 0; i + 8 <= n; i += 8) NarrowEight(from + i, to + i, seen);
            if (n % 8 != 0) NarrowEight(from + n - 8, to + n - 8, seen);
            return AllFit(seen);
        }
        if (n >= 4) {
            NarrowFour(from, to, seen);
            NarrowFour(from + n - 4, to + n - 4, seen);
            return AllFit(seen);
        }
#endif
        char16_t seen16 = 0;
        for (size_t i = 0; i < n; ++i) {
            seen16 |= from[i];
            to[i] = from[i] < 256 ? static_cast<char>(from[i]) : '?';
        }
        return seen16 < 256;
    }
    // How many bytes of text follow a string record's length: none for the empty and
    // the overlong (whose text is deliberately not skipped).
    static size_t TextLength(int32_t length) { return length < 1 || length >= kMaxStringRead ? 0 : size_t(length); }
    // Bytes between the read position and the end of the file as it was when opened;
    // 0 when not reading. Bounds what a count read from the file may claim.
    int64_t BytesLeft() const;
    void SaveNumeric(int32_t lNum);
    void SaveString(std::u16string_view sz);
    // Back to the start of the file.
    void Reset();
    // While writing: empties the file, to write it anew from its start.
    void Restart();

    // Some read since opening (or the last Reset) came up short.
    bool HitEnd() const { return hitEnd_; }

private:
#ifdef __SSE2__
    static void WidenEight(const unsigned char* from, char16_t* to) {
        const __m128i eight = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(from));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm_unpacklo_epi8(eight, _mm_setzero_si128()));
    }
    static void WidenFour(const unsigned char* from, char16_t* to) {
        int32_t four;
        std::memcpy(&four, from, sizeof four);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(to), _mm_unpacklo_epi8(_mm_cvtsi32_si128(four), _mm_setzero_si128()));
    }
    // Units of 256 and more become '?', then each unit is packed into its low byte.
    static __m128i NarrowUnits(__m128i units) {
        const __m128i small = _mm_cmpeq_epi16(_mm_and_si128(units, _mm_set1_epi16(static_cast<short>(0xFF00))), _mm_setzero_si128());
        const __m128i kept = _mm_or_si128(_mm_and_si128(small, units), _mm_andnot_si128(small, _mm_set1_epi16(u'?')));
        return _mm_packus_epi16(kept, kept);
    }
    static void NarrowEight(const char16_t* from, char* to, __m128i& seen) {
        const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
        seen = _mm_or_si128(seen, units);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(to), NarrowUnits(units));
    }
    static void NarrowFour(const char16_t* from, char* to, __m128i& seen) {
        const __m128i units = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(from));
        seen = _mm_or_si128(seen, units);
        const int32_t four = _mm_cvtsi128_si32(NarrowUnits(units));
        std::memcpy(to, &four, sizeof four);
    }
    static bool AllFit(__m128i seen) {
        const __m128i high = _mm_and_si128(seen, _mm_set1_epi16(static_cast<short>(0xFF00)));
        return _mm_movemask_epi8(_mm_cmpeq_epi16(high, _mm_setzero_si128())) == 0xFFFF;
    }
#endif
    // Moves the unread bytes to the front of the buffer and reads behind them until n
    // are there, the missing ones zeros.
    void WidenWindow(size_t n);
    // Room for n bytes at the end of what is written, or null when nothing can be
    // written. Records are written straight into it, so that a record of a few bytes
    // costs no call that copies or zeroes them first.
    char* Append(size_t n);
    // Gives back the last n bytes of the room just appended, left unused.
    void Unappend(size_t n) { bufferPos_ -= n; }
    bool Flush();
    // Back to the closed state, every later save starting with one byte per unit.
    void Closed();

    int fd_ = -1;
    FileReplacement replacement_;  // open while a replacement is written through fd_
    bool writing_ = false;
    bool hitEnd_ = false;
    bool writeFailed_ = false;
    bool unitsDidNotFit_ = false;
    TextEncoding encoding_ = TextEncoding::OneBytePerUnit;
    std::vector<char> buffer_;
    size_t bufferPos_ = 0;  // next byte to read from buffer_, or to write into it
    int64_t fileSize_ = 0;  // of a file opened for reading
    int64_t bufferStart_ = 0;  // file offset of buffer_[0] while reading
};

// The one shared instance, created on first use. Whoever opened it owns its position.
// Inline: every record read asks for it.
inline clsBinaryFile& g_BinaryFile() {
    static clsBinaryFile file;
    return file;
}

}  // namespace kestrel
