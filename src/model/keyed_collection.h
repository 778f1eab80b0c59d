#pragma once
// The one container of the code model: entries kept in insertion order, reachable by
// 1-based position or by a string key compared after UpperCase (or, for a collection
// told so while empty, exactly).
//
// Removal leaves a hole in the slot array instead of shifting it; a Fenwick tree over
// the live flags turns a position into a slot (and back) in O(log n), and the holes
// are squeezed out once they outnumber the live entries. Key lookup is a hash lookup
// in an open-addressing table of slot numbers: each key is stored once, upper-cased,
// in its slot, and a looked-up key is hashed and compared unit by unit through
// UpperUnit, so neither a lookup nor the index makes a copy of a key. Entries that
// know their own key (KeySource::Value: the value's ForEachKeyUnit, hashed through its
// KeyText) are not given a copy at all; such an entry must keep answering the key it
// was added under.
// So a class with 50,000 members, or a project with 50,000 files, stays fast for
// every access pattern the model uses (append, lookup, sweep, "remove position 1
// until empty").
#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "common/text.h"
#include "errorlog/errorlog.h"
#include "model/key_hash.h"

namespace kestrel {

// Where a collection finds an entry's key: a copy it keeps, or the entry itself.
enum class KeySource { Copy, Value };

template <class T, KeySource Keys = KeySource::Copy>
class KeyedCollection {
public:
    using Value = std::shared_ptr<T>;

    int32_t Count() const { return live_; }
    // Changes whenever an entry leaves: an entry found earlier is still in while it is the same.
    uint32_t Removals() const { return removals_; }

    // Whether keys are compared exactly, letter case included, instead of case-blind.
    // Only an empty collection changes: the keys present were stored for their rule.
    // (The hash stays case-blind, which equal keys share all the same.)
    void CompareKeysExactly(bool exact)
        requires(Keys == KeySource::Copy)
    {
        if (live_ == 0) exactKeys_ = exact;
    }

    // The entry at a 1-based position, or nullptr when there is none.
    Value At(int32_t position) const {
        int32_t slot = SlotOf(position);
        return slot < 0 ? nullptr : slots_[slot].value;
    }
    // The entry under a key (compared case-blind), or nullptr.
    Value Find(std::u16string_view key) const {
        int32_t slot = SlotOfKey(key);
        return slot < 0 ? nullptr : slots_[slot].value;
    }
    bool Contains(std::u16string_view key) const { return SlotOfKey(key) >= 0; }

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
        const Probe probe = Locate(key);
        if (probe.found) return false;
        AddMissing(probe, key, std::move(value));
        return true;
    }

    // A lookup that keeps the key's hash, so that a miss can be filled by AddMissing
    // without hashing the key and probing the index a second time.
    struct Probe {
        Value found;  // nullptr on a miss
        uint32_t hash;
    };
    Probe Locate(std::u16string_view key) const {
        const uint32_t hash = HashOf(key);
        const int32_t slot = Lookup(hash, [&](const Slot& s) { return SameKey(s, key); });
        return {slot < 0 ? nullptr : slots_[slot].value, hash};
    }
    // As Locate for the key made of the units of `first` and then `second` with every
    // space left out (a function's key from its name and parameters), without making it.
    Probe LocateJoined(std::u16string_view first, std::u16string_view second) const {
        const uint32_t hash = KeyHash().Add(first).Add(second).Value();
        const int32_t slot = Lookup(hash, [&](const Slot& s) {
            JoinedUnits joined{first, second};
            char16_t next;
            return ForEachSlotUnit(s, [&](char16_t c) { return joined.Next(next) && UpperUnit(c) == next; }) &&
                   !joined.Next(next);
        });
        return {slot < 0 ? nullptr : slots_[slot].value, hash};
    }
    // Appends under the key that `probe` missed; nothing may be added in between.
    void AddMissing(const Probe& probe, std::u16string_view key, Value value) {
        Reserve();
        if constexpr (kKeysCopied)
            slots_.push_back(Slot{exactKeys_ ? std::u16string(key) : UpperCase(key), std::move(value)});
        else
            slots_.push_back(Slot{std::move(value)});
        Append(probe.hash);
    }
    // As TryAdd, under the key the value already answers through ForEachKeyUnit; its
    // KeyText is hashed in place, and no key is built unless the hash is found taken.
    bool TryAdd(Value value)
        requires(Keys == KeySource::Value)
    {
        const uint32_t hash = HashOfValue(*value);
        if (Lookup(hash, [&](const Slot& s) { return SameKey(s, KeyOfValue(*value)); }) >= 0) return false;
        Reserve();
        slots_.push_back(Slot{std::move(value)});
        Append(hash);
        return true;
    }

    // Makes room for `more` entries beyond those present, so that adding them neither
    // moves the entries nor rebuilds the index. Callers pass counts they can vouch for.
    void ReserveMore(int32_t more) {
        if (more <= 0) return;
        const size_t total = slots_.size() + static_cast<size_t>(more);
        slots_.reserve(total);
        // The size the index would have grown to by the time the last of them is added.
        size_t size = std::max<size_t>(table_.size(), 8);
        while ((tableUsed_ + static_cast<size_t>(more)) * 4 > size * 3) size *= 2;
        if (size > table_.size()) RehashTo(size);
    }

    bool Remove(int32_t position) {
        int32_t slot = SlotOf(position);
        if (slot < 0) return false;
        Kill(slot);
        Squeeze();
        return true;
    }
    bool Remove(std::u16string_view key) {
        int32_t slot = SlotOfKey(key);
        if (slot < 0) return false;
        Kill(slot);
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
        ++removals_;
        slots_.clear();
        tree_.clear();
        table_.clear();
        tableUsed_ = 0;
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
    static constexpr bool kKeysCopied = Keys == KeySource::Copy;
    struct CopiedKeySlot {
        std::u16string key;  // upper-cased, unless keys compare exactly
        Value value;         // nullptr once removed
    };
    struct ValueKeySlot {
        Value value;  // nullptr once removed
    };
    using Slot = std::conditional_t<kKeysCopied, CopiedKeySlot, ValueKeySlot>;

    // Grows the index (or clears out removal markers) at three quarters full.
    void Reserve() {
        if ((tableUsed_ + 1) * 4 > table_.size() * 3) Rehash(live_ + 1);
    }
    // Indexes the slot just appended.
    void Append(uint32_t hash) {
        AppendToTree();
        ++live_;
        Place(static_cast<int32_t>(slots_.size()) - 1, hash);
    }

    // tree_[i] (1-based) counts the live slots in (i - lowbit(i), i]; tree_[0] is unused.
    // While no slot is empty positions need no tree, so it is built at the first removal
    // and dropped when the holes are squeezed out: a collection only ever appended to (a
    // loaded project, nearly all of it) keeps none.
    static int32_t LowBit(int32_t i) { return i & -i; }
    int32_t Prefix(int32_t i) const {
        int32_t sum = 0;
        for (; i > 0; i -= LowBit(i)) sum += tree_[i];
        return sum;
    }
    void AppendToTree() {
        if (tree_.empty()) return;  // no slot empty
        int32_t i = static_cast<int32_t>(slots_.size());
        tree_.push_back(1 + Prefix(i - 1) - Prefix(i - LowBit(i)));
    }
    void Kill(int32_t slot) {
        if (tree_.empty()) {  // every slot is live until now
            tree_.resize(slots_.size() + 1);
            for (int32_t i = 1; i < static_cast<int32_t>(tree_.size()); ++i) tree_[i] = LowBit(i);
        }
        ++removals_;
        Unindex(slot);
        slots_[slot].value.reset();
        if constexpr (kKeysCopied) std::u16string().swap(slots_[slot].key);
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
        slots_.swap(kept);
        std::vector<int32_t>().swap(tree_);
        Rehash(live_, true);
    }

    // The hash index: buckets hold a slot number and that slot's key hash. A removed
    // entry leaves a kGone marker so that later probes walk past it.
    static constexpr int32_t kEmpty = -1;
    static constexpr int32_t kGone = -2;
    struct Bucket {
        int32_t slot = kEmpty;
        uint32_t hash = 0;
    };

    static uint32_t HashOf(std::u16string_view key) { return KeyHash().Add(key).Value(); }
    // The hash of a live slot's key, as HashOf gives it for the key added under.
    static uint32_t HashOfSlot(const Slot& s) {
        if constexpr (kKeysCopied) {
            return HashOf(s.key);
        } else {
            return HashOfValue(*s.value);
        }
    }
    // As HashOf gives it for the key the value answers.
    static uint32_t HashOfValue(const T& value) { return HashOf(value.KeyText()); }
    static std::u16string KeyOfValue(const T& value) {
        std::u16string key;
        value.ForEachKeyUnit([&](char16_t c) {
            key.push_back(c);
            return true;
        });
        return key;
    }
    // Whether a live slot's key equals key in any letter case (or exactly).
    bool SameKey(const Slot& s, std::u16string_view key) const {
        if constexpr (kKeysCopied) {
            if (exactKeys_) return SameText(s.key, key);
            if (s.key.size() != key.size()) return false;
            for (size_t i = 0; i < key.size(); ++i)
                if (s.key[i] != UpperUnit(key[i])) return false;
            return true;
        } else {
            size_t at = 0;
            return ForEachSlotUnit(s, [&](char16_t c) {
                if (at == key.size() || UpperUnit(c) != UpperUnit(key[at])) return false;
                ++at;
                return true;
            }) && at == key.size();
        }
    }
    // Calls visit(unit) for each unit of a live slot's key until it answers false;
    // answers whether every unit was visited.
    template <class Visit>
    static bool ForEachSlotUnit(const Slot& s, Visit&& visit) {
        if constexpr (kKeysCopied) {
            for (char16_t c : s.key)
                if (!visit(c)) return false;
            return true;
        } else {
            return s.value->ForEachKeyUnit(visit);
        }
    }
    // The units of two texts in turn, upper-cased, spaces left out.
    struct JoinedUnits {
        std::u16string_view first, second;
        bool Next(char16_t& unit) {
            for (;;) {
                if (first.empty()) first.swap(second);
                if (first.empty()) return false;
                unit = UpperUnit(first.front());
                first.remove_prefix(1);
                if (unit != u' ') return true;
            }
        }
    };
    size_t Mask() const { return table_.size() - 1; }
    // The live slot that satisfies same(slot), or -1.
    template <class Same>
    int32_t Lookup(uint32_t hash, Same&& same) const {
        if (table_.empty()) return -1;
        for (size_t b = hash & Mask();; b = (b + 1) & Mask()) {
            const Bucket& at = table_[b];
            if (at.slot == kEmpty) return -1;
            if (at.slot >= 0 && at.hash == hash && same(slots_[at.slot])) return at.slot;
        }
    }
    // The live slot under key in any letter case, or -1; the key is not copied.
    int32_t SlotOfKey(std::u16string_view key) const {
        return Lookup(HashOf(key), [&](const Slot& s) { return SameKey(s, key); });
    }
    void Unindex(int32_t slot) {
        if (table_.empty()) return;
        for (size_t b = HashOfSlot(slots_[slot]) & Mask(); table_[b].slot != kEmpty; b = (b + 1) & Mask()) {
            if (table_[b].slot == slot) {
                table_[b].slot = kGone;
                return;
            }
        }
    }
    void Place(int32_t slot, uint32_t hash) {
        size_t b = hash & Mask();
        while (table_[b].slot != kEmpty) b = (b + 1) & Mask();
        table_[b] = Bucket{slot, hash};
        ++tableUsed_;
    }
    // A table at most half full for `entries` entries, indexing every live slot. The
    // hashes kept in the buckets are reused unless the slots were renumbered.
    void Rehash(int32_t entries, bool renumbered = false) {
        size_t size = 8;
        while (static_cast<size_t>(entries) * 2 > size) size *= 2;
        RehashTo(size, renumbered);
    }
    void RehashTo(size_t size, bool renumbered = false) {
        std::vector<Bucket> old(size);
        old.swap(table_);
        tableUsed_ = 0;
        if (renumbered) {
            for (size_t slot = 0; slot < slots_.size(); ++slot)
                Place(static_cast<int32_t>(slot), HashOfSlot(slots_[slot]));
        } else {
            for (const Bucket& b : old)
                if (b.slot >= 0) Place(b.slot, b.hash);
        }
    }

    std::vector<Slot> slots_;
    std::vector<int32_t> tree_;
    std::vector<Bucket> table_;
    size_t tableUsed_ = 0;  // buckets not kEmpty: live entries and removal markers
    int32_t live_ = 0;
    uint32_t removals_ = 0;
    bool exactKeys_ = false;
};

}  // namespace kestrel
