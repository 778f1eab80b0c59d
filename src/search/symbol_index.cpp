#include "search/symbol_index.h"

#include <algorithm>
#include <climits>
#include <queue>

#include "model/all_files.h"
#include "model/class_object.h"
#include "model/one_file.h"
#include "model/one_item.h"
#include "search/fuzzy_match.h"
#include "search/name_table.h"

namespace kestrel {

namespace {

// The pseudo-class the model files free functions and variables under.
constexpr std::u16string_view kFileLevelClass = u"Globals";
constexpr NameTable::Id kNoContainer = UINT32_MAX;
constexpr int32_t kNoMatch = INT32_MIN;

struct Record {
    NameTable::Id name;
    NameTable::Id container;  // kNoContainer for a class and at file level
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

class SymbolIndex::Names : public NameTable {};

struct SymbolIndex::FileSymbols {
    std::u16string name;
    std::u16string params;  // the records' parameter texts, one after another
    std::vector<Record> records;
};

struct SymbolIndex::Candidate {
    int32_t score;
    const FileSymbols* file;
    const Record* record;
    const NameTable* names;

    // Whether this one ranks before `other`.
    bool Before(const Candidate& other) const {
        if (score != other.score) return score > other.score;
        if (record->name != other.record->name) {
            if (const int byName = CompareNames(names->Text(record->name), names->Text(other.record->name)))
                return byName < 0;
        }
        if (file != other.file) {
            if (const int byFile = file->name.compare(other.file->name)) return byFile < 0;
        }
        return record->line < other.record->line;
    }
};

SymbolIndex::SymbolIndex() : names_(std::make_unique<Names>()) {}
SymbolIndex::~SymbolIndex() = default;

void SymbolIndex::Rebuild(clsAllFiles& files) {
    std::vector<std::u16string> indexed;
    for (const auto& entry : slotOfFile_) indexed.push_back(entry.first);
    for (const auto& name : indexed) RemoveFile(name);
    for (const FilePtr& file : files.Files()) UpdateFile(*file);
}

void SymbolIndex::UpdateFile(clsOneFile& file) {
    auto symbols = std::make_unique<FileSymbols>();
    symbols->name = file.FileName();
    for (const ClassPtr& classObj : file.Classes()) {
        const bool fileLevel = classObj->Name == kFileLevelClass;
        const NameTable::Id container = fileLevel ? kNoContainer : names_->Take(classObj->Name, NameTable::Use::SymbolName);
        // A class has no line of its own in the model: it is shown at its first member,
        // or at the end of its body when it has none.
        int32_t firstLine = INT32_MAX;
        for (const bool functions : {false, true}) {
            classObj->ForEachForSaving(functions, [&](const clsOneItem& item) {
                Record r{};
                r.name = names_->Take(item.Name(), NameTable::Use::SymbolName);
                r.container = fileLevel ? kNoContainer : names_->Take(classObj->Name, NameTable::Use::Container);
                r.paramsAt = static_cast<uint32_t>(symbols->params.size());
                r.paramsLength = static_cast<uint32_t>(item.Params().size());
                symbols->params.append(item.Params());
                r.line = item.Line;
                r.scope = static_cast<int16_t>(item.Scope);
                r.kind = functions ? SymbolKind::Function : SymbolKind::Variable;
                symbols->records.push_back(r);
                firstLine = std::min(firstLine, item.Line);
            });
        }
        if (fileLevel) continue;
        Record r{};
        r.name = container;
        r.container = kNoContainer;
        r.line = firstLine == INT32_MAX ? classObj->EndLine : firstLine;
        r.kind = SymbolKind::Class;
        symbols->records.push_back(r);
    }
    symbols->params.shrink_to_fit();
    symbols->records.shrink_to_fit();

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
    const FileSymbols& symbols = *bySlot_[found->second];
    for (const Record& r : symbols.records) {
        names_->Release(r.name, NameTable::Use::SymbolName);
        if (r.container != kNoContainer) names_->Release(r.container, NameTable::Use::Container);
    }
    symbols_ -= symbols.records.size();
    bySlot_[found->second].reset();
    freeSlots_.push_back(found->second);
    slotOfFile_.erase(found);
    return true;
}

std::vector<SymbolHit> SymbolIndex::Find(const SymbolQuery& query) const {
    bool qualified = false;
    const auto [containerText, nameText] = SplitQuery(query.text, qualified);

    // Each distinct name is scored once; the symbols then look their names' scores up.
    auto scoreNames = [&](const FuzzyQuery& fuzzy) {
        std::vector<int32_t> scores(names_->Bound(), kNoMatch);
        const uint64_t needed = fuzzy.Mask();
        for (NameTable::Id id = 0; id < scores.size(); ++id) {
            if ((names_->Mask(id) & needed) != needed || !names_->Live(id)) continue;
            if (const auto score = fuzzy.ScoreFolded(names_->Text(id), names_->Folded(id))) scores[id] = *score;
        }
        return scores;
    };
    const std::vector<int32_t> nameScores = scoreNames(FuzzyQuery(nameText));
    const std::vector<int32_t> containerScores = qualified ? scoreNames(FuzzyQuery(containerText)) : std::vector<int32_t>();

    // Without filters, the symbols that can make the list are known from the names
    // alone: the best-scoring names, taken until they bear `limit` symbols, set the
    // least score worth looking at.
    int32_t least = kNoMatch;
    if (query.limit != 0 && !query.kind && !query.scope && !qualified) {
        // Symbols per score, counted from the best score down.
        int32_t low = INT32_MAX, high = INT32_MIN;
        for (const int32_t score : nameScores) {
            if (score == kNoMatch) continue;
            low = std::min(low, score);
            high = std::max(high, score);
        }
        if (low <= high) {
            std::vector<size_t> symbolsAt(static_cast<size_t>(int64_t{high} - low) + 1);
            for (NameTable::Id id = 0; id < nameScores.size(); ++id)
                if (nameScores[id] != kNoMatch) symbolsAt[static_cast<size_t>(nameScores[id] - low)] += names_->Symbols(id);
            size_t symbols = 0;
            for (size_t at = symbolsAt.size(); at-- > 0;) {
                symbols += symbolsAt[at];
                if (symbols >= query.limit) {
                    least = static_cast<int32_t>(low + static_cast<int32_t>(at));
                    break;
                }
            }
        }
    }

    // The best `limit` so far, the worst of them on top, to be pushed out.
    auto worseFirst = [](const Candidate& a, const Candidate& b) { return a.Before(b); };
    std::priority_queue<Candidate, std::vector<Candidate>, decltype(worseFirst)> best(worseFirst);
    std::vector<Candidate> all;

    for (const auto& file : bySlot_) {
        if (!file) continue;
        for (const Record& r : file->records) {
            int32_t score = nameScores[r.name];
            if (score < least || score == kNoMatch) continue;
            if (query.kind && r.kind != *query.kind) continue;
            if (query.scope && (r.kind == SymbolKind::Class || r.scope != *query.scope)) continue;
            if (qualified) {
                if (r.container == kNoContainer || containerScores[r.container] == kNoMatch) continue;
                score += containerScores[r.container] / 2;
            }
            const Candidate c{score, file.get(), &r, names_.get()};
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
        hit.name = names_->Text(r.name);
        hit.kind = r.kind;
        hit.scope = r.scope;
        if (r.container != kNoContainer) hit.container = names_->Text(r.container);
        hit.file = c.file->name;
        hit.line = r.line;
        hit.params = std::u16string_view(c.file->params).substr(r.paramsAt, r.paramsLength);
        hit.score = c.score;
        hits.push_back(std::move(hit));
    }
    return hits;
}

size_t SymbolIndex::MemoryBytes() const {
    size_t bytes = names_->MemoryBytes() + bySlot_.capacity() * sizeof(bySlot_[0]) +
                   freeSlots_.capacity() * sizeof(size_t);
    for (const auto& file : bySlot_) {
        if (!file) continue;
        bytes += sizeof(FileSymbols) + (file->name.capacity() + file->params.capacity()) * sizeof(char16_t) +
                 file->records.capacity() * sizeof(Record);
        // The map's node: the key's text and two pointers' worth of links.
        bytes += file->name.capacity() * sizeof(char16_t) + 4 * sizeof(void*);
    }
    return bytes;
}

}  // namespace kestrel
