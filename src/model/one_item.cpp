#include "model/one_item.h"

#include <algorithm>

#include "persist/binary_file.h"

namespace kestrel {

// The four numbers, the marks and the text pointer: with the shared-pointer block an
// item takes one 64-byte allocation.
static_assert(sizeof(clsOneItem) <= 40);

clsOneItem::clsOneItem(std::u16string_view name, std::u16string_view params, std::u16string_view keyVal) {
    Store(name, params, {}, keyVal);
}

clsOneItem::clsOneItem(FunctionKeyed, std::u16string_view name, std::u16string_view params) {
    Store(name, params, {}, {});
    // A key with no unit at all is no key.
    const auto kept = [](std::u16string_view part) { return part.find_first_not_of(u' ') != part.npos; };
    if (kept(name) || kept(params)) keyForm_ = KeyForm::FunctionKey;
}

clsOneItem::clsOneItem(const clsOneItem& other) { *this = other; }

clsOneItem& clsOneItem::operator=(const clsOneItem& other) {
    if (this == &other) return *this;
    Line = other.Line;
    Scope = other.Scope;
    UserId = other.UserId;
    Used = other.Used;
    Store(other.Name(), other.Params(), other.UserData(), other.KeyVal());
    return *this;
}

std::u16string clsOneItem::KeyVal() const {
    if (keyForm_ == KeyForm::Empty) return {};
    std::u16string key;
    key.reserve(nameLen_ + paramsLen_ + keyLen_);
    ForEachKeyUnit([&](char16_t c) {
        key.push_back(c);
        return true;
    });
    return key;
}

void clsOneItem::SetName(std::u16string_view name) { Store(name, Params(), UserData(), KeyVal()); }
void clsOneItem::SetParams(std::u16string_view params) { Store(Name(), params, UserData(), KeyVal()); }
void clsOneItem::SetUserData(std::u16string_view userData) { Store(Name(), Params(), userData, KeyVal()); }

void clsOneItem::SetKeyVal(std::u16string_view keyVal) {
    const KeyForm form = FormOf(Name(), Params(), keyVal);
    if (form == KeyForm::Stored) {
        if (keyForm_ == KeyForm::Stored && StoredKey() == keyVal) return;
    } else if (keyForm_ != KeyForm::Stored) {
        // A key rebuilt from the other texts needs no room of its own.
        keyForm_ = form;
        return;
    }
    Store(Name(), Params(), UserData(), keyVal);
}

clsOneItem::KeyForm clsOneItem::FormOf(std::u16string_view name, std::u16string_view params,
                                       std::u16string_view keyVal) {
    if (keyVal.empty()) return KeyForm::Empty;
    if (keyVal == name) return KeyForm::SameAsName;
    size_t at = 0;
    for (std::u16string_view part : {name, params}) {
        for (char16_t c : part) {
            if (c == u' ') continue;
            if (at == keyVal.size() || keyVal[at] != UpperUnit(c)) return KeyForm::Stored;
            ++at;
        }
    }
    return at == keyVal.size() ? KeyForm::FunctionKey : KeyForm::Stored;
}

void clsOneItem::Store(std::u16string_view name, std::u16string_view params, std::u16string_view userData,
                       std::u16string_view keyVal) {
    const KeyForm form = FormOf(name, params, keyVal);
    const size_t keyLen = form == KeyForm::Stored ? keyVal.size() : 0;
    const size_t total = name.size() + params.size() + userData.size() + keyLen;
    std::unique_ptr<char16_t[]> texts;
    if (total > 0) {
        texts.reset(new char16_t[total]);
        char16_t* to = texts.get();
        for (std::u16string_view part : {name, params, userData, keyVal.substr(0, keyLen)})
            to = std::copy(part.begin(), part.end(), to);
    }
    // The old texts go only now: the views may point into them.
    texts_ = std::move(texts);
    nameLen_ = static_cast<uint32_t>(name.size());
    paramsLen_ = static_cast<uint32_t>(params.size());
    userDataLen_ = static_cast<uint32_t>(userData.size());
    keyLen_ = static_cast<uint32_t>(keyLen);
    keyForm_ = form;
}

void clsOneItem::LoadFromBinaryFile(int32_t version) {
    clsBinaryFile& in = g_BinaryFile();
    // One buffer per field, kept from item to item, so that a loaded item costs the one
    // allocation of its texts.
    thread_local std::u16string name, userData, params;
    in.LoadString(name);
    Line = in.LoadNumeric();
    Scope = in.LoadNumeric();
    UserId = in.LoadNumeric();
    in.LoadString(userData);
    if (version >= 11) in.LoadString(params);
    else params.clear();
    Store(name, params, userData, {});
}

}  // namespace kestrel
