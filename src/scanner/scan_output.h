#pragma once
// What the scanner talks to: the output that receives each declaration it finds
// (the file record implements it) and the host's line source for text held in memory.
#include <cstdint>
#include <string>
#include <string_view>

namespace kestrel {

class ScanOutput {
public:
    virtual ~ScanOutput() = default;

    // The file's kind (FILETYPE_*) and its absolute name, read by the scanner. The
    // name is the output's own, valid as long as it lives.
    virtual int32_t FileType() const = 0;
    virtual const std::u16string& FileName() = 0;

    virtual void WriteDeclare__(const std::u16string& fullName, int32_t line, int16_t scope,
                                const std::u16string& params) = 0;
    virtual void WriteVariable__(const std::u16string& fullName, int32_t line, int16_t scope,
                                 const std::u16string& typeText) = 0;
    // A function (as WriteDeclare__) or a variable (as WriteVariable__) handed over in
    // the two parts of its full name, as the scanner finds them: the full name is
    // className, "::" and memberName. This joins them and passes the full name on; an
    // output that would only split it again takes the parts as they are.
    virtual void WriteMember__(bool isFunction, std::u16string_view className, std::u16string_view memberName,
                               int32_t line, int16_t scope, const std::u16string& text);
    virtual void WriteEndClass__(const std::u16string& className, int32_t endLine) = 0;
    virtual void WriteInclude__(const std::u16string& fileName, int32_t line) = 0;
};

// Lines of a text the host holds in memory (an editor buffer). Lines are 1-based.
class LineSource {
public:
    virtual ~LineSource() = default;
    virtual int32_t GetLineCount() = 0;
    virtual std::u16string Line(int32_t lineNumber) = 0;
};

}  // namespace kestrel
