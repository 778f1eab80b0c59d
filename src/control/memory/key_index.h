#pragma once
// The index from a key to the node that carries it. Most lookups of the control miss
// (it asks whether a node exists before adding it), so the table is open addressed:
// each slot holds the key's hash beside the node, and a lookup, found or not, reads
// one run of slots and touches a node only when the hashes agree.
#include <cstddef>
#include <functional>
#include <string_view>
#include <vector>

namespace kestrel {

// Node is any type whose Key() answers a u16string_view; the index holds pointers and
// the node keeps its key unchanged while it is indexed.
template <class Node>
class KeyIndex {
public:
    Node* Find(std::u16string_view key) const {
        if (slots_.empty()) return nullptr;
        const size_t hash = Hash(key);
        for (size_t i = hash & mask_;; i = (i + 1) & mask_) {
            const Slot& s = slots_[i];
            if (!s.node) return nullptr;
            if (s.hash == hash && s.node->Key() == key) return s.node;
        }
    }

    // False, and nothing changed, when a node with the same key is indexed already.
    bool Insert(Node* node) {
        if ((count_ + 1) * 2 > slots_.size()) Grow();
        const size_t hash = Hash(node->Key());
        size_t i = hash & mask_;
        for (; slots_[i].node; i = (i + 1) & mask_)
            if (slots_[i].hash == hash && slots_[i].node->Key() == node->Key()) return false;
        slots_[i] = {hash, node};
        ++count_;
        return true;
    }

    void Erase(std::u16string_view key) {
        if (slots_.empty()) return;
        const size_t hash = Hash(key);
        size_t hole = hash & mask_;
        for (;; hole = (hole + 1) & mask_) {
            if (!slots_[hole].node) return;
            if (slots_[hole].hash == hash && slots_[hole].node->Key() == key) break;
        }
        // Shift back every later slot of the run that may sit in the hole, so that no
        // run is ever broken by an empty slot.
        for (size_t j = (hole + 1) & mask_; slots_[j].node; j = (j + 1) & mask_) {
            const size_t home = slots_[j].hash & mask_;
            if (((j - home) & mask_) >= ((j - hole) & mask_)) {
                slots_[hole] = slots_[j];
                hole = j;
            }
        }
        slots_[hole] = {};
        --count_;
    }

    void Clear() {
        slots_.clear();
        mask_ = 0;
        count_ = 0;
    }

private:
    struct Slot {
        size_t hash = 0;
        Node* node = nullptr;
    };

    static size_t Hash(std::u16string_view key) { return std::hash<std::u16string_view>{}(key); }

    void Grow() {
        std::vector<Slot> old(slots_.empty() ? 64 : slots_.size() * 2);
        old.swap(slots_);
        mask_ = slots_.size() - 1;
        for (const Slot& s : old) {
            if (!s.node) continue;
            size_t i = s.hash & mask_;
            while (slots_[i].node) i = (i + 1) & mask_;
            slots_[i] = s;
        }
    }

    std::vector<Slot> slots_;  // a power of two in size, at most half full
    size_t mask_ = 0;
    size_t count_ = 0;
};

}  // namespace kestrel
