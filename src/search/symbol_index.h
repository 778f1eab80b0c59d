#pragma once
// Every class, function and variable of a project, for finding symbols by a typed,
// fuzzy query (see fuzzy_match.h) across the whole project at once.
//
// The index keeps its own copy of what it needs, file by file, so that a change costs
// what the changed file holds: the owner of the project hands it each file it adds or
// rescans (UpdateFile) and each it removes (RemoveFile).
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kestrel {

class clsAllFiles;
class clsOneFile;

enum class SymbolKind : uint8_t { Class, Function, Variable };

struct SymbolHit {
    std::u16string name;
    SymbolKind kind = SymbolKind::Function;
    int32_t scope = 0;        // a Scope value; 0 for a class
    std::u16string container; // the class of a member; empty for a class and at file level
    std::u16string file;      // the file's absolute name
    int32_t line = 0;
    std::u16string params;    // parameter text of a function, type text of a variable
    int32_t score = 0;
};

struct SymbolQuery {
    std::u16string text;
    // How many hits at most, the best first; 0 for all of them.
    size_t limit = 100;
    std::optional<SymbolKind> kind;
    std::optional<int32_t> scope;
};

class SymbolIndex {
public:
    SymbolIndex();
    ~SymbolIndex();
    SymbolIndex(const SymbolIndex&) = delete;
    SymbolIndex& operator=(const SymbolIndex&) = delete;

    // Forgets everything and indexes every file of the project.
    void Rebuild(clsAllFiles& files);
    // Takes the file's symbols as they stand now, in place of what it had.
    void UpdateFile(clsOneFile& file);
    // Forgets a file by its absolute name; false when it was not indexed.
    bool RemoveFile(const std::u16string& fileName);

    // The hits of a query, ranked: the best score first, ties by name, then file, then
    // line. A query "Container::name" or "Container.name" matches its last part against
    // the names and the rest against the member's class. An empty query lists every
    // symbol by name.
    std::vector<SymbolHit> Find(const SymbolQuery& query) const;

    size_t SymbolCount() const { return symbols_; }
    size_t FileCount() const { return bySlot_.size() - freeSlots_.size(); }
    // Bytes the index holds, roughly: its records and texts.
    size_t MemoryBytes() const;

private:
    struct FileSymbols;
    struct Candidate;
    class Names;
    std::unique_ptr<Names> names_;
    std::vector<std::unique_ptr<FileSymbols>> bySlot_;
    std::vector<size_t> freeSlots_;
    std::unordered_map<std::u16string, size_t> slotOfFile_;
    size_t symbols_ = 0;
};

}  // namespace kestrel
