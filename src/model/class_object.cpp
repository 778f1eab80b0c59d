#include "model/class_object.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "common/constants.h"
#include "common/text.h"
#include "errorlog/resume.h"
#include "persist/binary_file.h"

namespace kestrel {

namespace {

constexpr std::string_view kModule = "clsClassObject.cls";
constexpr int16_t kHourglass = 11;
constexpr int32_t kReplayWithHourglass = 20;  // more members than this show the hourglass

// The decimal version text handed down by the file reader, back as a number.
int32_t VersionNumber(const std::u16string& text) {
    int32_t value = 0;
    size_t i = 0;
    bool negative = i < text.size() && text[i] == u'-';
    if (negative) ++i;
    for (; i < text.size() && text[i] >= u'0' && text[i] <= u'9' && value < 100000000; ++i)
        value = value * 10 + (text[i] - u'0');
    return negative ? -value : value;
}

// Adds a loaded item under its own key (its Name, or the function key of Name and
// Params), or else under its Name followed by "#1", "#2", ..., and makes that its KeyVal.
// Nothing is removed while a class loads, so a suffix found taken stays taken: each
// name remembers where its search stopped, which keeps a file full of one repeated
// name from costing quadratic time.
class DuplicateRenamer {
public:
    explicit DuplicateRenamer(clsClassObject::Items& items) : items_(items) {}

    void Add(const ItemPtr& item, clsOneItem::OwnKey own) {
        if (item->SetKeyValToOwn(own)) {
            if (items_.TryAdd(item)) return;
        } else if (items_.TryAdd(u"", item)) {  // the empty function key stays empty
            return;
        }
        int32_t& n = lastSuffix_[UpperCase(item->Name())];
        std::u16string key;
        do key = std::u16string(item->Name()) + u"#" + ToText(++n);
        while (!items_.TryAdd(key, item));
        item->SetKeyVal(key);
    }

private:
    clsClassObject::Items& items_;
    std::unordered_map<std::u16string, int32_t> lastSuffix_;
};

}  // namespace

void clsClassObject::FileLoadedMembers() const {
    // Taken first: filing reads no member through Vars or Funcs, and a failure part of
    // the way leaves the members filed so far.
    std::vector<ItemPtr> loaded;
    loaded.swap(loaded_);
    const int32_t variables = std::exchange(loadedVariables_, 0);
    auto file = [](std::span<const ItemPtr> members, Items& items, clsOneItem::OwnKey own) {
        items.ReserveMore(Size(members));
        DuplicateRenamer renamer(items);
        for (const ItemPtr& item : members) renamer.Add(item, own);
    };
    file(Part(loaded, variables, false), variables_, clsOneItem::OwnKey::Name);
    file(Part(loaded, variables, true), functions_, clsOneItem::OwnKey::FunctionKey);
}

std::u16string clsClassObject::MakeFuncKey__(std::u16string_view name, std::u16string_view params) {
    // Written through a pointer into room for every unit, then cut to what was kept:
    // appending unit by unit costs a capacity check per unit on a hot path of loading.
    std::u16string key(name.size() + params.size(), u'\0');
    char16_t* to = key.data();
    for (std::u16string_view part : {name, params})
        for (char16_t c : part)
            if (c != u' ') *to++ = UpperUnit(c);
    key.resize(static_cast<size_t>(to - key.data()));
    return key;
}

int32_t clsClassObject::IsFunctionDefined(const std::u16string& szFuncName) const {
    for (const ItemPtr& f : Funcs())
        if (f->Name() == szFuncName) return f->Line;
    return -1;
}

void clsClassObject::AddFunction__(std::u16string_view name, int32_t line, int32_t scope, ModelSink* sink,
                                   const FilePtr& file, std::u16string_view params) {
    IgnoreErrors([&] {
        // Looked up by name and parameters as they stand: the key is made only when an
        // item has to be filed under it as a text of its own.
        const Items::Probe probe = Funcs().LocateJoined(name, params);
        ItemPtr item = probe.found;
        if (!item) {
            item = clsOneItem::New(clsOneItem::FunctionKeyed{}, name, params);
            Funcs().AddMissing(probe, {}, item);
            item->Line = -1;  // a new item always differs from what is stored below
            item->Scope = -1;
        }
        item->Used = true;
        if (item->Line != line) item->Line = line;
        // A free function is always public, whatever the scanner saw.
        int32_t stored = (Name == u"Globals" || Name.empty()) ? PUBLIC_SCOPE : scope;
        if (item->Scope != stored) item->Scope = stored;
        // An item found under this key with these very parameters is keyed by them
        // already; anything else is filed under the key as given.
        const bool sameParams = SameText(item->Params(), params);
        if (!sameParams) item->SetParams(params);
        if (!sameParams || !item->KeyedByFunctionKey()) item->SetKeyVal(MakeFuncKey__(name, params));
        IgnoreErrors([&] { Required(sink).AddFunction__(item, shared_from_this(), file); });
    });
}

void clsClassObject::AddVariable__(std::u16string_view name, int32_t line, int32_t scope, ModelSink* sink,
                                   const FilePtr& file, std::u16string_view params) {
    ItemPtr item;
    IgnoreErrors([&] {
        const Items::Probe probe = Vars().Locate(name);
        item = probe.found;
        if (!item) {
            item = clsOneItem::New(name, params);
            Vars().AddMissing(probe, name, item);
            item->Line = -1;
            item->Scope = -1;
        }
        item->Used = true;
        if (item->Line != line) item->Line = line;
        if (item->Scope != scope) item->Scope = scope;
        if (!SameText(item->Params(), params)) item->SetParams(params);
    });
    // Unlike AddFunction__, an error from the sink reaches the caller.
    Required(sink).AddVariable__(item, shared_from_this(), file);
}

void clsClassObject::PrepareUpdate__() {
    for (const ItemPtr& v : Vars()) v->Used = false;
    for (const ItemPtr& f : Funcs()) f->Used = false;
}

void clsClassObject::FinishUpdate__(ModelSink* sink, const FilePtr& file) {
    Trap(kModule, "Sub FinishUpdate__", [&] {
        ClassPtr self = shared_from_this();
        Vars().RemoveWhere([&](const ItemPtr& v) {
            if (v->Used) return false;
            Required(sink).RemoveVariable__(v, self, file);
            return true;
        });
        Funcs().RemoveWhere([&](const ItemPtr& f) {
            if (f->Used) return false;
            Required(sink).RemoveFunction__(f, self, file);
            return true;
        });
    });
}

ItemPtr clsClassObject::InProc__(int32_t line, int32_t& startLine) const {
    int32_t best = -1;
    ItemPtr result;
    for (const ItemPtr& f : Funcs()) {
        if (f->Line <= line && f->Line > best) {
            best = f->Line;
            result = f;
        }
    }
    startLine = best;
    return result;
}

void clsClassObject::AddAllFromTheClass__(ModelSink* sink, const FilePtr& file) {
    Trap(kModule, "Sub AddAllFromTheClass__", [&] {
        ModelSink& to = Required(sink);
        ClassPtr self = shared_from_this();
        struct Pointer {
            ModelSink& sink;
            bool shown;
            int16_t previous = 0;
            Pointer(ModelSink& s, bool show) : sink(s), shown(show) {
                if (shown) {
                    previous = sink.MousePointer();
                    sink.MousePointer(kHourglass);
                }
            }
            ~Pointer() {
                if (shown) IgnoreErrors([&] { sink.MousePointer(previous); });
            }
        } pointer(to, CountFunc() + CountVars() > kReplayWithHourglass);
        for (const ItemPtr& f : Funcs()) to.AddFunction__(f, self, file);
        for (const ItemPtr& v : Vars()) to.AddVariable__(v, self, file);
    });
}

void clsClassObject::LoadFromBinaryData(const std::u16string& version, ModelSink* sink, const FilePtr& file) {
    Trap(kModule, "Sub LoadFromBinaryData", [&] {
        clsBinaryFile& in = g_BinaryFile();
        Name = in.LoadString();
        EndLine = in.LoadNumeric();
        UserData = in.LoadString();
        UserId = in.LoadNumeric();
        const int32_t itemVersion = VersionNumber(version);

        // Filed first, should this class have members already: those loaded go after them.
        Vars();
        // Counts come from the file: a damaged one ends its loops at the end of the data,
        // and reserves no more room than the rest of the file could fill.
        // Variables are counted as they come, so that a load ended by an error part of the
        // way keeps each member read on its side.
        auto loadItems = [&](bool variables) {
            const int32_t n = in.LoadNumeric();
            loaded_.reserve(loaded_.size() + static_cast<size_t>(std::max<int64_t>(
                0, std::min<int64_t>(n, in.BytesLeft() / clsOneItem::SmallestRecord(itemVersion)))));
            for (int32_t k = 0; k < n && !in.HitEnd(); ++k) {
                loaded_.push_back(clsOneItem::LoadFromBinaryFile(itemVersion));
                loadedVariables_ += variables;
            }
        };
        loadItems(true);
        loadItems(false);
        if (CountVars() > 0 || CountFunc() > 0) Required(sink).AddClassNode__WithDummy(shared_from_this(), file);
    });
}

}  // namespace kestrel
