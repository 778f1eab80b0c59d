#include "model/one_item.h"

#include <algorithm>
#include <tuple>

#include "model/item_memory.h"
#include "persist/binary_file.h"

namespace kestrel {

// The four numbers, the marks and the text pointer.
static_assert(sizeof(clsOneItem) <= 40);

namespace {

struct RoomRequest {
    size_t units;
    char16_t* room = nullptr;
};

// Allocates a shared pointer's block, from item memory, with room for `units` code
// units behind it and tells where that room starts. The copy kept in the block only
// frees it.
template <class T>
struct AllocatorWithRoom {
    using Request = RoomRequest;
    using value_type = T;
    explicit AllocatorWithRoom(Request* r) : request(r) {}
    template <class U>
    AllocatorWithRoom(const AllocatorWithRoom<U>& other) : request(other.request) {}
    T* allocate(size_t n) {
        static_assert(alignof(T) >= alignof(char16_t));
        const size_t bytes = n * sizeof(T);
        char* block = static_cast<char*>(AllocateItemMemory(bytes + request->units * sizeof(char16_t)));
        request->room = reinterpret_cast<char16_t*>(block + bytes);
        return reinterpret_cast<T*>(block);
    }
    void deallocate(T* block, size_t) noexcept { FreeItemMemory(block); }
    template <class U>
    bool operator==(const AllocatorWithRoom<U>&) const {
        return true;
    }
    Request* request;
};

}  // namespace

std::pair<ItemPtr, char16_t*> clsOneItem::WithRoom(size_t units) {
    using Allocator = AllocatorWithRoom<clsOneItem>;
    RoomRequest request{units};
    ItemPtr item = std::allocate_shared<clsOneItem>(Allocator(&request));
    return {std::move(item), request.room};
}

ItemPtr clsOneItem::New(std::u16string_view name, std::u16string_view params) {
    auto [item, room] = WithRoom(name.size() + params.size());
    item->Store(name, params, {}, {}, room);
    return item;
}

ItemPtr clsOneItem::New(FunctionKeyed, std::u16string_view name, std::u16string_view params) {
    ItemPtr item = New(name, params);
    item->SetKeyValToOwn(OwnKey::FunctionKey);  // a key with no unit at all is no key
    return item;
}

clsOneItem::clsOneItem(std::u16string_view name, std::u16string_view params, std::u16string_view keyVal) {
    Store(name, params, {}, keyVal);
}

clsOneItem::clsOneItem(const clsOneItem& other) { *this = other; }

clsOneItem::~clsOneItem() { ReleaseTexts(); }

void clsOneItem::ReleaseTexts() {
    if (ownsTexts_) delete[] texts_;
}

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
        const std::u16string_view texts(texts_, nameLen_ + paramsLen_);
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
                         Fill&& fill, char16_t* room) {
    const size_t total = nameLen + paramsLen + userDataLen + keyLen;
    char16_t* texts = nullptr;
    if (total > 0) {
        texts = room ? room : new char16_t[total];
        fill(texts);
    }
    // The old texts go only now: fill may read them. Room in the item's allocation
    // stays with it, unused.
    ReleaseTexts();
    texts_ = texts;
    ownsTexts_ = texts && !room;
    nameLen_ = static_cast<uint32_t>(nameLen);
    paramsLen_ = static_cast<uint32_t>(paramsLen);
    userDataLen_ = static_cast<uint32_t>(userDataLen);
    keyLen_ = static_cast<uint32_t>(keyLen);
    keyForm_ = form;
}

void clsOneItem::Store(std::u16string_view name, std::u16string_view params, std::u16string_view userData,
                       std::u16string_view keyVal, char16_t* room) {
    const KeyForm form = FormOf(name, params, keyVal);
    const size_t keyLen = form == KeyForm::Stored ? keyVal.size() : 0;
    Replace(name.size(), params.size(), userData.size(), keyLen, form, [&](char16_t* to) {
        for (std::u16string_view part : {name, params, userData, keyVal.substr(0, keyLen)})
            to = std::copy(part.begin(), part.end(), to);
    }, room);
}

ItemPtr clsOneItem::LoadFromBinaryFile(int32_t version) {
    // The record is read in place, in one window of the file that grows as its lengths
    // become known: Name, Line, Scope, UserId, UserData, then Params. Its texts are
    // widened from there straight into the item's one allocation.
    clsBinaryFile& in = g_BinaryFile();
    size_t end = 0;  // of the record so far
    struct Text {
        size_t at, length;
    };
    const auto text = [&] {
        const size_t length = clsBinaryFile::TextLength(clsBinaryFile::DecodeNumeric(in.Window(end + 4).data() + end));
        const Text t{end + 4, length};
        end = t.at + length;
        return t;
    };
    const Text name = text();
    const size_t numbers = end;
    end += 12;
    const Text userData = text();
    const Text params = version >= 11 ? text() : Text{end, 0};
    const char* const record = in.Window(end).data();
    const auto bytes = [&](const Text& t) { return std::string_view(record + t.at, t.length); };
    ItemPtr item;
    char16_t* room;
    if (in.Encoding() == clsBinaryFile::TextEncoding::OneBytePerUnit) [[likely]] {
        std::tie(item, room) = WithRoom(name.length + params.length + userData.length);
        item->Replace(name.length, params.length, userData.length, 0, KeyForm::Empty, [&](char16_t* to) {
            for (const Text& t : {name, params, userData}) to = clsBinaryFile::Widen(bytes(t), to);
        }, room);
    } else {
        // The lengths count UTF-8 bytes; how many units the texts take is known only
        // once they are decoded, here one after another into room kept from item to item.
        static thread_local std::u16string units;
        units.clear();
        size_t lengths[3];
        const Text* texts[] = {&name, &params, &userData};
        for (size_t k = 0; k < 3; ++k) {
            const size_t before = units.size();
            clsBinaryFile::AppendUtf8Text(units, bytes(*texts[k]));
            lengths[k] = units.size() - before;
        }
        std::tie(item, room) = WithRoom(units.size());
        item->Replace(lengths[0], lengths[1], lengths[2], 0, KeyForm::Empty,
                      [&](char16_t* to) { std::copy(units.begin(), units.end(), to); }, room);
    }
    item->Line = clsBinaryFile::DecodeNumeric(record + numbers);
    item->Scope = clsBinaryFile::DecodeNumeric(record + numbers + 4);
    item->UserId = clsBinaryFile::DecodeNumeric(record + numbers + 8);
    in.Skip(end);
    return item;
}

}  // namespace kestrel
