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
    SetKeyValToOwn(OwnKey::FunctionKey);  // a key with no unit at all is no key
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

bool clsOneItem::SetKeyValToOwn(OwnKey own) {
    KeyForm form = KeyForm::FunctionKey;
    if (own == OwnKey::Name) {
        form = nameLen_ == 0 ? KeyForm::Empty : KeyForm::SameAsName;
    } else {
        const std::u16string_view texts(texts_.get(), nameLen_ + paramsLen_);
        if (texts.find_first_not_of(u' ') == std::u16string_view::npos) return false;
    }
    if (keyForm_ == KeyForm::Stored) Store(Name(), Params(), UserData(), {});
    keyForm_ = form;
    return true;
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

template <class Fill>
void clsOneItem::Replace(size_t nameLen, size_t paramsLen, size_t userDataLen, size_t keyLen, KeyForm form,
                         Fill&& fill) {
    const size_t total = nameLen + paramsLen + userDataLen + keyLen;
    std::unique_ptr<char16_t[]> texts;
    if (total > 0) {
        texts.reset(new char16_t[total]);
        fill(texts.get());
    }
    // The old texts go only now: fill may read them.
    texts_ = std::move(texts);
    nameLen_ = static_cast<uint32_t>(nameLen);
    paramsLen_ = static_cast<uint32_t>(paramsLen);
    userDataLen_ = static_cast<uint32_t>(userDataLen);
    keyLen_ = static_cast<uint32_t>(keyLen);
    keyForm_ = form;
}

void clsOneItem::Store(std::u16string_view name, std::u16string_view params, std::u16string_view userData,
                       std::u16string_view keyVal) {
    const KeyForm form = FormOf(name, params, keyVal);
    const size_t keyLen = form == KeyForm::Stored ? keyVal.size() : 0;
    Replace(name.size(), params.size(), userData.size(), keyLen, form, [&](char16_t* to) {
        for (std::u16string_view part : {name, params, userData, keyVal.substr(0, keyLen)})
            to = std::copy(part.begin(), part.end(), to);
    });
}

void clsOneItem::LoadFromBinaryFile(int32_t version) {
    clsBinaryFile& in = g_BinaryFile();
    // The bytes of Name, UserData and Params as the record holds them, in one buffer kept
    // from item to item and widened straight into the item's one allocation.
    thread_local std::string read;
    read.clear();
    const size_t nameLen = in.AppendStringBytes(read);
    Line = in.LoadNumeric();
    Scope = in.LoadNumeric();
    UserId = in.LoadNumeric();
    const size_t userDataLen = in.AppendStringBytes(read);
    const size_t paramsLen = version >= 11 ? in.AppendStringBytes(read) : 0;
    const std::string_view bytes(read);
    Replace(nameLen, paramsLen, userDataLen, 0, KeyForm::Empty, [&](char16_t* to) {
        for (std::string_view part :
             {bytes.substr(0, nameLen), bytes.substr(nameLen + userDataLen), bytes.substr(nameLen, userDataLen)})
            for (char byte : part) *to++ = static_cast<unsigned char>(byte);
    });
}

}  // namespace kestrel
