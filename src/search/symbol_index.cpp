#include "search/symbol_index.h"

#include <algorithm>
#include <climits>
#include <queue>

#include "model/all_files.h"
#include "model/class_object.h"
#include "model/one_file.h"
#include "model/one_item.h"
#include "search/fuzzy_match.h"

namespace kestrel {

namespace {

// The pseudo-class the model files free functions and variables under.
constexpr std::u16string_view kFileLevelClass = u"Globals";

struct Record {
    uint32_t nameAt, nameLength;
    uint32_t containerAt, containerLength;
    uint32_t paramsAt, paramsLength;
    int32_t line;
    int16_t scope;
    SymbolKind kind;
};

// Compares two texts as a person reads a list of names: letter case first ignored,
// then (for names that differ only in case) exactly.
int CompareNames(std::u16string_view a, std::u16string_view b) {
    const size_t n = std::min(a.size(), b.size());
    for (size_t i = 0; i < n; ++i) {
        const char16_t x = FoldUnit(a[i]), y = FoldUnit(b[i]);
        if (x != y) return x < y ? -1 : 1;
    }
    if (a.size() != b.size()) return a.size() < b.size() ? -1 : 1;
    return a.compare(b);
}

// The container part and the name part of a query: "Shape::Area" and "Shape.Area"
// split at their last separator.
std::pair<std::u16string_view, std::u16string_view> SplitQuery(std::u16string_view text, bool& qualified) {
    const size_t colons = text.rfind(u"::");
    const size_t dot = text.rfind(u'.');
    qualified = true;
    if (colons != std::u16string_view::npos && (dot == std::u16string_view::npos || colons > dot))
        return {text.substr(0, colons), text.substr(colons + 2)};
    if (dot != std::u16string_view::npos) return {text.substr(0, dot), text.substr(dot + 1)};
    qualified = false;
    return {{}, text};
}

}  // namespace

struct SymbolIndex::FileSymbols {
    std::u16string name;
    std::u16string texts;
    std::vector<Record> records;
    std::vector<uint64_t> masks;  // UnitMask of each record's name

    std::u16string_view Text(uint32_t at, uint32_t length) const { return {texts.data() + at, length}; }
    std::u16string_view Name(const Record& r) const { return Text(r.nameAt, r.nameLength); }
    std::u16string_view Container(const Record& r) const { return Text(r.containerAt, r.containerLength); }

    uint32_t Append(std::u16string_view text) {
        const auto at = static_cast<uint32_t>(texts.size());
        texts.append(text);
        return at;
    }
    void Add(Record r) {
        masks.push_back(UnitMask(Name(r)));
        records.push_back(r);
    }
};

struct SymbolIndex::Candidate {
    int32_t score;
    const FileSymbols* file;
    const Record* record;

    // Whether this one ranks before `other`.
    bool Before(const Candidate& other) const {
        if (score != other.score) return score > other.score;
        if (const int byName = CompareNames(file->Name(*record), other.file->Name(*other.record))) return byName < 0;
        if (file != other.file) {
            if (const int byFile = file->name.compare(other.file->name)) return byFile < 0;
        }
        return record->line < other.record->line;
    }
};

SymbolIndex::SymbolIndex() = default;
SymbolIndex::~SymbolIndex() = default;

void SymbolIndex::Rebuild(clsAllFiles& files) {
    bySlot_.clear();
    freeSlots_.clear();
    slotOfFile_.clear();
    symbols_ = 0;
    for (const FilePtr& file : files.Files()) UpdateFile(*file);
}

void SymbolIndex::UpdateFile(clsOneFile& file) {
    auto symbols = std::make_unique<FileSymbols>();
    symbols->name = file.FileName();
    for (const ClassPtr& classObj : file.Classes()) {
        const bool fileLevel = classObj->Name == kFileLevelClass;
        const uint32_t containerAt = symbols->Append(fileLevel ? std::u16string_view() : classObj->Name);
        const auto containerLength = static_cast<uint32_t>(fileLevel ? 0 : classObj->Name.size());
        // A class has no line of its own in the model: it is shown at its first member,
        // or at the end of its body when it has none.
        int32_t firstLine = INT32_MAX;
        for (const bool functions : {false, true}) {
            classObj->ForEachForSaving(functions, [&](const clsOneItem& item) {
                Record r{};
                r.nameAt = symbols->Append(item.Name());
                r.nameLength = static_cast<uint32_t>(item.Name().size());
                r.containerAt = containerAt;
                r.containerLength = containerLength;
                r.paramsAt = symbols->Append(item.Params());
                r.paramsLength = static_cast<uint32_t>(item.Params().size());
                r.line = item.Line;
                r.scope = static_cast<int16_t>(item.Scope);
                r.kind = functions ? SymbolKind::Function : SymbolKind::Variable;
                symbols->Add(r);
                firstLine = std::min(firstLine, item.Line);
            });
        }
        if (fileLevel) continue;
        Record r{};
        r.nameAt = containerAt;
        r.nameLength = containerLength;
        r.line = firstLine == INT32_MAX ? classObj->EndLine : firstLine;
        r.kind = SymbolKind::Class;
        symbols->Add(r);
    }
    symbols->texts.shrink_to_fit();
    symbols->records.shrink_to_fit();
    symbols->masks.shrink_to_fit();

    RemoveFile(symbols->name);
    symbols_ += symbols->records.size();
    size_t slot;
    if (freeSlots_.empty()) {
        slot = bySlot_.size();
        bySlot_.push_back(nullptr);
    } else {
        slot = freeSlots_.back();
        freeSlots_.pop_back();
    }
    slotOfFile_.emplace(symbols->name, slot);
    bySlot_[slot] = std::move(symbols);
}

bool SymbolIndex::RemoveFile(const std::u16string& fileName) {
    const auto found = slotOfFile_.find(fileName);
    if (found == slotOfFile_.end()) return false;
    symbols_ -= bySlot_[found->second]->records.size();
    bySlot_[found->second].reset();
    freeSlots_.push_back(found->second);
    slotOfFile_.erase(found);
    return true;
}

std::vector<SymbolHit> SymbolIndex::Find(const SymbolQuery& query) const {
    bool qualified = false;
    const auto [containerText, nameText] = SplitQuery(query.text, qualified);
    const FuzzyQuery name(nameText);
    const FuzzyQuery container(containerText);
    const uint64_t needed = name.Mask();

    // The best `limit` so far, the worst of them on top, to be pushed out.
    auto worseFirst = [](const Candidate& a, const Candidate& b) { return a.Before(b); };
    std::priority_queue<Candidate, std::vector<Candidate>, decltype(worseFirst)> best(worseFirst);
    std::vector<Candidate> all;

    for (const auto& file : bySlot_) {
        if (!file) continue;
        const size_t count = file->records.size();
        for (size_t i = 0; i < count; ++i) {
            if ((file->masks[i] & needed) != needed) continue;
            const Record& r = file->records[i];
            if (query.kind && r.kind != *query.kind) continue;
            if (query.scope && (r.kind == SymbolKind::Class || r.scope != *query.scope)) continue;
            const auto nameScore = name.Score(file->Name(r));
            if (!nameScore) continue;
            Candidate c{*nameScore, file.get(), &r};
            if (qualified) {
                if (r.containerLength == 0) continue;
                const auto containerScore = container.Score(file->Container(r));
                if (!containerScore) continue;
                c.score += *containerScore / 2;
            }
            if (query.limit == 0) {
                all.push_back(c);
            } else if (best.size() < query.limit) {
                best.push(c);
            } else if (c.Before(best.top())) {
                best.pop();
                best.push(c);
            }
        }
    }
    while (!best.empty()) {
        all.push_back(best.top());
        best.pop();
    }
    std::sort(all.begin(), all.end(), [](const Candidate& a, const Candidate& b) { return a.Before(b); });

    std::vector<SymbolHit> hits;
    hits.reserve(all.size());
    for (const Candidate& c : all) {
        const Record& r = *c.record;
        SymbolHit hit;
        hit.name = c.file->Name(r);
        hit.kind = r.kind;
        hit.scope = r.scope;
        hit.container = c.file->Container(r);
        if (r.kind == SymbolKind::Class) hit.container.clear();
        hit.file = c.file->name;
        hit.line = r.line;
        hit.params = c.file->Text(r.paramsAt, r.paramsLength);
        hit.score = c.score;
        hits.push_back(std::move(hit));
    }
    return hits;
}

size_t SymbolIndex::MemoryBytes() const {
    size_t bytes = bySlot_.capacity() * sizeof(bySlot_[0]) + freeSlots_.capacity() * sizeof(size_t);
    for (const auto& file : bySlot_) {
        if (!file) continue;
        bytes += sizeof(FileSymbols) + (file->name.capacity() + file->texts.capacity()) * sizeof(char16_t) +
                 file->records.capacity() * sizeof(Record) + file->masks.capacity() * sizeof(uint64_t);
        // The map's node: the key's text and two pointers' worth of links.
        bytes += file->name.capacity() * sizeof(char16_t) + 4 * sizeof(void*);
    }
    return bytes;
}

}  // namespace kestrel
