#pragma once
// The one container of the code model: entries kept in insertion order, reachable by
// 1-based position or by a string key compared after UpperCase.
//
// Removal leaves a hole in the slot array instead of shifting it; a Fenwick tree over
// the live flags turns a position into a slot (and back) in O(log n), and the holes
// are squeezed out once they outnumber the live entries. Key lookup is a hash lookup.
// So a class with 50,000 members, or a project with 50,000 files, stays fast for
// every access pattern the model uses (append, lookup, sweep, "remove position 1
// until empty").
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "common/text.h"
#include "errorlog/errorlog.h"

namespace kestrel {

template <class T>
class KeyedCollection {
public:
    using Value = std::shared_ptr<T>;

    int32_t Count() const { return live_; }

    // The entry at a 1-based position, or nullptr when there is none.
    Value At(int32_t position) const {
        int32_t slot = SlotOf(position);
        return slot < 0 ? nullptr : slots_[slot].value;
    }
    // The entry under a key (compared case-blind), or nullptr.
    Value Find(std::u16string_view key) const {
        auto it = index_.find(UpperCase(key));
        return it == index_.end() ? nullptr : slots_[it->second].value;
    }
    bool Contains(std::u16string_view key) const { return index_.count(UpperCase(key)) != 0; }

    // As At and Find, but a miss is a run-time error (for callers that report it).
    Value Item(int32_t position) const {
        Value v = At(position);
        if (!v) throw RuntimeError(kErrSubscriptOutOfRange, "Subscript out of range");
        return v;
    }
    Value Item(std::u16string_view key) const {
        Value v = Find(key);
        if (!v) throw RuntimeError(kErrInvalidCall, "Invalid procedure call or argument");
        return v;
    }

    // Appends under a key; a key already present (in any letter case) is a run-time error.
    void Add(std::u16string_view key, Value value) {
        if (!TryAdd(key, std::move(value)))
            throw RuntimeError(kErrKeyExists, "This key is already associated with an element of this collection");
    }
    // As Add, answering false instead of raising when the key is present.
    bool TryAdd(std::u16string_view key, Value value) {
        std::u16string upper = UpperCase(key);
        if (index_.count(upper)) return false;
        int32_t slot = static_cast<int32_t>(slots_.size());
        index_.emplace(upper, slot);
        slots_.push_back(Slot{std::move(upper), std::move(value)});
        AppendToTree();
        ++live_;
        return true;
    }

    bool Remove(int32_t position) {
        int32_t slot = SlotOf(position);
        if (slot < 0) return false;
        Kill(slot);
        Squeeze();
        return true;
    }
    bool Remove(std::u16string_view key) {
        auto it = index_.find(UpperCase(key));
        if (it == index_.end()) return false;
        Kill(it->second);
        Squeeze();
        return true;
    }

    // Walks the entries in order and removes each for which decide(value) answers true.
    // decide runs before its entry is removed; if it throws, that entry and every later
    // one stay, the earlier removals hold.
    template <class Decide>
    void RemoveWhere(Decide&& decide) {
        struct SqueezeAtEnd {
            KeyedCollection* c;
            ~SqueezeAtEnd() { c->Squeeze(); }
        } guard{this};
        for (size_t slot = 0; slot < slots_.size(); ++slot) {
            if (!slots_[slot].value) continue;
            Value keep = slots_[slot].value;  // decide may drop other references
            if (decide(keep)) Kill(static_cast<int32_t>(slot));
        }
    }

    void Clear() {
        slots_.clear();
        tree_.assign(1, 0);
        index_.clear();
        live_ = 0;
    }

    // Iteration in order over the live entries. Entries must not be added or removed
    // while iterating (use RemoveWhere to sweep).
    class const_iterator {
    public:
        const_iterator(const KeyedCollection* c, size_t slot) : c_(c), slot_(slot) { Skip(); }
        const Value& operator*() const { return c_->slots_[slot_].value; }
        const_iterator& operator++() {
            ++slot_;
            Skip();
            return *this;
        }
        bool operator==(const const_iterator& o) const { return slot_ == o.slot_; }

    private:
        void Skip() {
            while (slot_ < c_->slots_.size() && !c_->slots_[slot_].value) ++slot_;
        }
        const KeyedCollection* c_;
        size_t slot_;
    };
    const_iterator begin() const { return const_iterator(this, 0); }
    const_iterator end() const { return const_iterator(this, slots_.size()); }

private:
    struct Slot {
        std::u16string key;  // upper-cased
        Value value;         // nullptr once removed
    };

    // tree_[i] (1-based) counts the live slots in (i - lowbit(i), i].
    static int32_t LowBit(int32_t i) { return i & -i; }
    int32_t Prefix(int32_t i) const {
        int32_t sum = 0;
        for (; i > 0; i -= LowBit(i)) sum += tree_[i];
        return sum;
    }
    void AppendToTree() {
        int32_t i = static_cast<int32_t>(slots_.size());
        tree_.push_back(1 + Prefix(i - 1) - Prefix(i - LowBit(i)));
    }
    void Kill(int32_t slot) {
        index_.erase(slots_[slot].key);
        slots_[slot].value.reset();
        slots_[slot].key.clear();
        for (int32_t i = slot + 1; i < static_cast<int32_t>(tree_.size()); i += LowBit(i)) --tree_[i];
        --live_;
    }
    // The slot holding the position-th live entry, or -1.
    int32_t SlotOf(int32_t position) const {
        if (position < 1 || position > live_) return -1;
        if (live_ == static_cast<int32_t>(slots_.size())) return position - 1;
        int32_t n = static_cast<int32_t>(slots_.size());
        int32_t step = 1;
        while (step * 2 <= n) step *= 2;
        int32_t at = 0;
        for (; step > 0; step /= 2) {
            if (at + step <= n && tree_[at + step] < position) {
                at += step;
                position -= tree_[at];
            }
        }
        return at;  // the slot after `at` 1-based slots, i.e. 0-based index `at`
    }
    void Squeeze() {
        int32_t dead = static_cast<int32_t>(slots_.size()) - live_;
        if (dead < 64 || dead < live_) return;
        std::vector<Slot> kept;
        kept.reserve(live_);
        for (Slot& s : slots_)
            if (s.value) kept.push_back(std::move(s));
        slots_.clear();
        tree_.assign(1, 0);
        index_.clear();
        for (Slot& s : kept) {
            index_.emplace(s.key, static_cast<int32_t>(slots_.size()));
            slots_.push_back(std::move(s));
            AppendToTree();
        }
    }

    std::vector<Slot> slots_;
    std::vector<int32_t> tree_ = std::vector<int32_t>(1, 0);
    std::unordered_map<std::u16string, int32_t> index_;
    int32_t live_ = 0;
};

}  // namespace kestrel
