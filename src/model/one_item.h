#pragma once
// One function or one variable of a class.
//
// A project holds tens of thousands of items, so an item keeps its texts in a single
// block behind accessors: Name, Params and UserData side by side, and KeyVal only
// when it is not one the item can rebuild (a variable's own Name, or a function's name
// and parameters upper-cased without spaces, which is nearly always the case).
// An item made by New or read by LoadFromBinaryFile has that block in the allocation
// of its shared pointer, so it costs one allocation, not two, until a text changes.
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "common/text.h"
#include "model/model_sink.h"

namespace kestrel {

class clsOneItem {
public:
    int32_t Line = 0;    // -1 while just created and not yet refreshed
    int32_t Scope = 0;   // a Scope value; -1 as for Line
    int32_t UserId = 0;  // host's number, never interpreted
    bool Used = false;   // mark of the current update pass

private:
    // How KeyVal is held: not at all (empty), as Name, as the function key of Name and
    // Params, or as its own text after UserData. Declared here to fill the padding
    // after Used.
    enum class KeyForm : uint8_t { Empty, SameAsName, FunctionKey, Stored };
    KeyForm keyForm_ = KeyForm::Empty;
    bool ownsTexts_ = false;  // texts_ is a block of its own, not room in the item's allocation

public:
    clsOneItem() = default;
    clsOneItem(std::u16string_view name, std::u16string_view params, std::u16string_view keyVal = {});
    // A function filed under the function key of its name and parameters, which the
    // caller has just looked it up by: the key is not compared again.
    struct FunctionKeyed {};
    clsOneItem(const clsOneItem& other);
    clsOneItem& operator=(const clsOneItem& other);
    ~clsOneItem();

    // As the constructors, in one allocation with the texts.
    static ItemPtr New(std::u16string_view name, std::u16string_view params);
    static ItemPtr New(FunctionKeyed, std::u16string_view name, std::u16string_view params);

    std::u16string_view Name() const { return {texts_, nameLen_}; }  // as written in the source
    // Parameter text of a function (or type text of a variable).
    std::u16string_view Params() const { return {texts_ + nameLen_, paramsLen_}; }
    // Host's text, never interpreted.
    std::u16string_view UserData() const { return {texts_ + nameLen_ + paramsLen_, userDataLen_}; }
    // Key under which the item sits in its class; empty for a variable added by a scan.
    std::u16string KeyVal() const;
    bool HasKeyVal() const { return keyForm_ != KeyForm::Empty; }
    // Whether KeyVal is the function key of Name and Params, as they stand.
    bool KeyedByFunctionKey() const { return keyForm_ == KeyForm::FunctionKey; }

    // A class finds its items through their keys (see ForEachKeyUnit), so an item that
    // sits in a class keeps Name and KeyVal as its class filed it.
    void SetName(std::u16string_view name);
    void SetParams(std::u16string_view params);
    void SetUserData(std::u16string_view userData);
    void SetKeyVal(std::u16string_view keyVal);
    // The keys an item can rebuild from its own texts: its Name, or the function key of
    // Name and Params (see clsClassObject::MakeFuncKey__).
    enum class OwnKey { Name, FunctionKey };
    // As SetKeyVal with that key, without building or checking it; a loaded project
    // files nearly every item so. False, with nothing changed, for a function key with
    // no units at all (Name and Params only spaces), which has no such form.
    bool SetKeyValToOwn(OwnKey own);

    // Calls visit(unit) for each code unit of the key the item's class files it under
    // (KeyVal, or Name while KeyVal is empty), until visit answers false; answers
    // whether every unit was visited. Nothing is copied.
    template <class Visit>
    bool ForEachKeyUnit(Visit&& visit) const {
        switch (keyForm_) {
            case KeyForm::Stored:
                return ForEachUnit(StoredKey(), visit);
            case KeyForm::FunctionKey:
                for (char16_t c : KeyText())
                    if (c != u' ' && !visit(UpperUnit(c))) return false;
                return true;
            default:
                return ForEachUnit(Name(), visit);
        }
    }
    // A text that reads as that key once its spaces are dropped and its units mapped
    // through UpperUnit, in one piece: what a collection that ignores both hashes,
    // without building the key.
    std::u16string_view KeyText() const {
        switch (keyForm_) {
            case KeyForm::Stored:
                return StoredKey();
            case KeyForm::FunctionKey:
                return {texts_, nameLen_ + paramsLen_};  // Name and Params side by side
            default:
                return Name();
        }
    }

    // Reads an item record from g_BinaryFile(); Params only from version 11 on. KeyVal
    // is left empty for the class to set.
    static ItemPtr LoadFromBinaryFile(int32_t version);
    // Bytes of the shortest item record of that version: its numbers and the lengths of
    // its texts.
    static constexpr int32_t SmallestRecord(int32_t version) { return version >= 11 ? 24 : 20; }

private:
    std::u16string_view StoredKey() const {
        return {texts_ + nameLen_ + paramsLen_ + userDataLen_, keyLen_};
    }
    template <class Visit>
    static bool ForEachUnit(std::u16string_view text, Visit& visit) {
        for (char16_t c : text)
            if (!visit(c)) return false;
        return true;
    }
    static KeyForm FormOf(std::u16string_view name, std::u16string_view params, std::u16string_view keyVal);
    // Replaces every text at once; the views may point into the item's own texts. See
    // Replace for room.
    void Store(std::u16string_view name, std::u16string_view params, std::u16string_view userData,
               std::u16string_view keyVal, char16_t* room = nullptr);
    // As Store, for texts of the lengths given that fill(block) writes in their order
    // (Name, Params, UserData, a stored key) into a new block, or into `room` when given:
    // room for them all that the item does not own.
    template <class Fill>
    void Replace(size_t nameLen, size_t paramsLen, size_t userDataLen, size_t keyLen, KeyForm form, Fill&& fill,
                 char16_t* room = nullptr);
    // A new item with room for `units` code units in its own allocation.
    static std::pair<ItemPtr, char16_t*> WithRoom(size_t units);
    void ReleaseTexts();

    char16_t* texts_ = nullptr;  // Name, Params, UserData, then a stored KeyVal
    uint32_t nameLen_ = 0;
    uint32_t paramsLen_ = 0;
    uint32_t userDataLen_ = 0;
    uint32_t keyLen_ = 0;  // of a stored KeyVal only
};

}  // namespace kestrel
