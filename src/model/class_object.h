#pragma once
// One class of a source file, or the pseudo-class "Globals" holding the file's free
// functions and variables. Functions are keyed by MakeFuncKey__, variables by name.
#include <cstdint>
#include <string>

#include "model/keyed_collection.h"
#include "model/model_sink.h"
#include "model/one_item.h"

namespace kestrel {

class clsClassObject : public std::enable_shared_from_this<clsClassObject> {
public:
    std::u16string Name;      // "Globals" for the pseudo-class
    std::u16string UserData;  // host's text
    int32_t UserId = 0;       // host's number
    int32_t EndLine = 0;      // last line of the body; 0 until the scanner reports it

    int32_t CountFunc() const { return functions_.Count(); }
    int32_t CountVars() const { return variables_.Count(); }
    // By 1-based position or by key; nullptr when there is no such entry. The names are
    // the host's: func and var.
    ItemPtr func(int32_t position) const { return functions_.At(position); }
    ItemPtr func(std::u16string_view key) const { return functions_.Find(key); }
    ItemPtr var(int32_t position) const { return variables_.At(position); }
    ItemPtr var(std::u16string_view key) const { return variables_.Find(key); }
    // Line of the first function whose Name equals szFuncName exactly, or -1.
    int32_t IsFunctionDefined(const std::u16string& szFuncName) const;

    // Name and parameter text, upper-cased, every space removed.
    static std::u16string MakeFuncKey__(std::u16string_view name, std::u16string_view params);

    // Insert or refresh a member, mark it seen, and tell the sink (always, even when
    // nothing changed). Errors inside AddFunction__ (the sink's included) are ignored;
    // an error raised by the sink's AddVariable__ reaches the caller.
    void AddFunction__(std::u16string_view name, int32_t line, int32_t scope, ModelSink* sink,
                       const FilePtr& file, std::u16string_view params);
    void AddVariable__(std::u16string_view name, int32_t line, int32_t scope, ModelSink* sink,
                       const FilePtr& file, std::u16string_view params);
    // Mark-and-sweep of one update pass: clear every mark, then drop every member still
    // unmarked (variables first, then functions), telling the sink before each removal.
    void PrepareUpdate__();
    void FinishUpdate__(ModelSink* sink, const FilePtr& file);
    // The function with the latest start line at or before `line` (nullptr if none);
    // its start line, or -1, through startLine.
    ItemPtr InProc__(int32_t line, int32_t& startLine) const;
    // Replays every function, then every variable, to the sink.
    void AddAllFromTheClass__(ModelSink* sink, const FilePtr& file);
    // Reads the class record from g_BinaryFile(); version as decimal text.
    void LoadFromBinaryData(const std::u16string& version, ModelSink* sink, const FilePtr& file);

    // In-order iteration for writers and the control.
    using Items = KeyedCollection<clsOneItem, KeySource::Value>;
    const Items& Functions() const { return functions_; }
    const Items& Variables() const { return variables_; }

private:
    Items variables_;
    Items functions_;
};

}  // namespace kestrel
