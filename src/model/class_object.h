#pragma once
// One class of a source file, or the pseudo-class "Globals" holding the file's free
// functions and variables. Functions are keyed by MakeFuncKey__, variables by name.
#include <cstdint>
#include <span>
#include <string>
#include <vector>

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

    int32_t CountFunc() const { return functions_.Count() + Size(loaded_) - loadedVariables_; }
    int32_t CountVars() const { return variables_.Count() + loadedVariables_; }
    // By 1-based position or by key; nullptr when there is no such entry. The names are
    // the host's: func and var.
    ItemPtr func(int32_t position) const { return Funcs().At(position); }
    ItemPtr func(std::u16string_view key) const { return Funcs().Find(key); }
    ItemPtr var(int32_t position) const { return Vars().At(position); }
    ItemPtr var(std::u16string_view key) const { return Vars().Find(key); }
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
    // Bytes of the shortest class record: its numbers and the lengths of its texts.
    static constexpr int32_t kSmallestRecord = 24;
    // Reads the class record from g_BinaryFile(); version as decimal text.
    void LoadFromBinaryData(const std::u16string& version, ModelSink* sink, const FilePtr& file);

    // In-order iteration for writers and the control.
    using Items = KeyedCollection<clsOneItem, KeySource::Value>;
    const Items& Functions() const { return Funcs(); }
    const Items& Variables() const { return Vars(); }
    // Calls visit(item) for each function (or variable) in order, for a writer that reads
    // no key: members loaded and not yet filed stay so, and a project saved right after
    // loading hashes nothing.
    template <class Visit>
    void ForEachForSaving(bool functions, Visit&& visit) const {
        for (const ItemPtr& item : functions ? functions_ : variables_) visit(*item);
        for (const ItemPtr& item : Part(loaded_, loadedVariables_, functions)) visit(*item);
    }

private:
    static int32_t Size(std::span<const ItemPtr> members) { return static_cast<int32_t>(members.size()); }
    // The variables (or functions) of loaded members of which the first `variables` are variables.
    static std::span<const ItemPtr> Part(std::span<const ItemPtr> loaded, int32_t variables, bool functions) {
        const auto split = static_cast<size_t>(variables);
        return functions ? loaded.subspan(split) : loaded.first(split);
    }
    void FileLoadedMembers() const;
    // The members, filed: every read and change goes through these.
    Items& Vars() const {
        if (!loaded_.empty()) FileLoadedMembers();
        return variables_;
    }
    Items& Funcs() const {
        if (!loaded_.empty()) FileLoadedMembers();
        return functions_;
    }

    // Mutable for filing on first use only: the members a const reader sees are the same.
    mutable Items variables_;
    mutable Items functions_;
    // Members read from a project file and not yet filed under their keys: first the
    // variables, then the functions. Loading only reads them; the class files them
    // (hashing every key, renaming the duplicates) the first time anything asks for its
    // members, so that opening a project costs little more than reading it, and a class
    // nobody opens never pays for it. Every member and key reads the same either way:
    // nothing reaches a member but through the class.
    mutable std::vector<ItemPtr> loaded_;
    mutable int32_t loadedVariables_ = 0;  // how many of loaded_, at its front, are variables
};

}  // namespace kestrel
