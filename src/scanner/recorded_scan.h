#pragma once
// A scan kept for later: an output that records every call the scanner makes, with
// the error reports raised while it ran, and hands them on in the same order to the
// real output. Scans can so run on other threads while the model, which is not
// shared between threads, takes their results on its own.
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
    void Replay(ScanOutput& to) const;

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

private:
    enum class Kind : uint8_t { Declare, Variable, EndClass, Include, Report };
    struct Call {
        Kind kind;
        int16_t scope = 0;
        int32_t line = 0;  // the error number for a report
        std::u16string name, text;
        std::string module, title, message;  // of a report
    };

    std::u16string fileName_;
    int32_t fileType_;
    int16_t language_;
    std::vector<Call> calls_;
};

}  // namespace kestrel
