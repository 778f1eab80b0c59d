#pragma once
// A scan kept for later: an output that records every call the scanner makes, with
// the error reports raised while it ran, and hands them on in the same order to the
// real output. Scans can so run on other threads while the model, which is not
// shared between threads, takes their results on its own.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "scanner/scan_output.h"

namespace kestrel {

class RecordedScan : public ScanOutput {
public:
    RecordedScan(std::u16string fileName, int32_t fileType, int16_t language)
        : fileName_(std::move(fileName)), fileType_(fileType), language_(language) {}

    // Scans the file from disk into this record, with the reports kept.
    void Scan();

    // Hands every call and report on to `to`, as the scanner would have made them on
    // it. A write that fails is reported under the title of the scanner's routine that
    // made it; a failing end-of-class or include write ends the replay, as it would end
    // the scanner's second pass.
    void Replay(ScanOutput& to) const { Replay(to, 0, SIZE_MAX); }
    // The same for the calls from `from` on, stopping after the call that uses up
    // `budget` (a call costs its texts' length and kCallCost): a thread that must keep
    // answering files a large scan a portion at a time. Returns where the next portion
    // starts; Calls() once the replay is over.
    size_t Replay(ScanOutput& to, size_t from, size_t budget) const;
    size_t Calls() const { return calls_.size(); }
    static constexpr size_t kCallCost = 64;
    // Gives back the room of texts that only calls before `call` use: a replay in
    // portions frees the scan as it goes instead of all at once at its end.
    void ReleaseBefore(size_t call);

    const std::u16string& Name() const { return fileName_; }
    int16_t Language() const { return language_; }

    int32_t FileType() const override { return fileType_; }
    const std::u16string& FileName() override { return fileName_; }
    void WriteDeclare__(const std::u16string& fullName, int32_t line, int16_t scope,
                        const std::u16string& params) override;
    void WriteVariable__(const std::u16string& fullName, int32_t line, int16_t scope,
                         const std::u16string& typeText) override;
    void WriteEndClass__(const std::u16string& className, int32_t endLine) override;
    void WriteInclude__(const std::u16string& fileName, int32_t line) override;
    // A member of a namespace's container (a::b) is kept in its two parts: joined, its
    // full name would split at the first "::". Every other member is kept joined.
    void WriteMember__(bool isFunction, std::u16string_view className, std::u16string_view memberName, int32_t line,
                       int16_t scope, const std::u16string& text) override;

private:
    enum class Kind : uint8_t { Declare, Variable, EndClass, Include, Report, DeclareMember, VariableMember };
    // A scan makes a call or two for every declaration it finds, so a call keeps its
    // texts in one of the scan's few large buffers rather than in strings of its own:
    // the scan then allocates a few times instead of twice per call, and the thread
    // that replays it frees as little.
    struct Call {
        Kind kind;
        int16_t scope = 0;
        int32_t line = 0;  // the error number for a report
        size_t chunk = 0;  // the buffer in texts_ that holds the texts
        size_t nameAt = 0, nameLength = 0;  // in that buffer; for a report, its index in reports_
        size_t textAt = 0, textLength = 0;
        size_t classLength = 0;  // of a member kept in its parts: the class's share of the name
    };
    // A buffer is closed once it holds this many code units (unless it is empty).
    static constexpr size_t kChunkUnits = size_t{1} << 20;
    struct Report {
        std::string module, title, message;
    };
    // A member kept in its parts passes its class as `name` and its own name as
    // `memberName`; they are stored side by side.
    void Add(Kind kind, int16_t scope, int32_t line, std::u16string_view name, std::u16string_view text = {},
             std::u16string_view memberName = {});

    std::u16string fileName_;
    int32_t fileType_;
    int16_t language_;
    std::vector<Call> calls_;
    std::vector<std::u16string> texts_;
    std::vector<Report> reports_;
};

}  // namespace kestrel
