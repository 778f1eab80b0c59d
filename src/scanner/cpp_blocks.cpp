#include "scanner/cpp_blocks.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "common/constants.h"
#include "common/text.h"
#include "errorlog/errorlog.h"
#include "scanner/cpp_declaration.h"
#include "scanner/text_search.h"

namespace kestrel {

namespace {

constexpr std::string_view kModule = "clsQuillbox.cls";
constexpr std::u16string_view kEndClassText = u"\u00ABEND\u00BFCLASS\u00BB";
constexpr size_t npos = std::u16string_view::npos;

// Bounds that keep hostile input from eating memory: blocks nested deeper are read as
// bodies, and a longer namespace name counts as anonymous.
constexpr size_t kMaxOpenBlocks = 1024;
constexpr size_t kMaxNamespaceName = 4096;
// Conditionals nested deeper are not told apart: their branches all count.
constexpr size_t kMaxConditions = 1024;
// A statement longer than this is never a lone macro invocation.
constexpr size_t kMaxMacroLine = 256;

const UnitSet kOpening = UnitSet::Of(u"{");
const UnitSet kClosing = UnitSet::Of(u"}");

struct AccessLabel {
    std::u16string_view label;
    int16_t scope;
};
constexpr std::array<AccessLabel, 11> kAccessLabels{{
    {u"public", PUBLIC_SCOPE},           {u"protected", PROTECTED_SCOPE},     {u"private", PRIVATE_SCOPE},
    {u"public slots", PUBLIC_SCOPE},     {u"protected slots", PROTECTED_SCOPE}, {u"private slots", PRIVATE_SCOPE},
    {u"public Q_SLOTS", PUBLIC_SCOPE},   {u"protected Q_SLOTS", PROTECTED_SCOPE}, {u"private Q_SLOTS", PRIVATE_SCOPE},
    {u"signals", PUBLIC_SCOPE},          {u"Q_SIGNALS", PUBLIC_SCOPE},
}};

// The units that end, open or close something in a statement: { } ; ( ) [ ] :
constexpr std::array<bool, 128> kSpecialUnits = [] {
    std::array<bool, 128> table{};
    for (char c : std::string_view("{};()[]:")) table[static_cast<size_t>(c)] = true;
    return table;
}();

size_t NextSpecial(std::u16string_view L, size_t k) {
    for (; k < L.size(); ++k) {
        if (L[k] < 128 && kSpecialUnits[L[k]]) return k;
    }
    return npos;
}

size_t NextBrace(std::u16string_view L, size_t k) { return FindEarlierOf(L, u"{", u"}", k).at; }

// A line that holds only a macro invocation (Q_OBJECT, DISALLOW_COPY(Foo)) ends no
// statement with ";" and would run into the next declaration.
bool IsLoneMacro(std::u16string_view text) {
    const std::u16string_view word = FirstCppWord(text);
    if (!IsCppMacroName(word)) return false;
    std::u16string_view rest = TrimmedView(text.substr(text.find(word) + word.size()));
    return rest.empty() || (rest.front() == u'(' && rest.back() == u')');
}

// After a constructor's parameters, a lone ":" starts its initialiser list ("::" in a
// trailing return type does not).
bool HoldsInitialiserList(std::u16string_view tail) {
    for (size_t k = tail.find(u':'); k != npos; k = tail.find(u':', k + 2)) {
        if (k + 1 >= tail.size() || tail[k + 1] != u':') return true;
    }
    return false;
}

// One #if ... #endif. Its branches are all read while each leaves the blocks as they
// were where the conditional starts; once a statement or a block is left open where it
// starts or at one of its branches, only the branch chosen first counts, so that the
// braces of the branches do not add up. "#if 0" is never chosen.
struct Condition {
    bool ignoring;      // the current branch is passed over
    bool ignoreAll;     // the whole conditional lies in a branch passed over
    bool singleBranch;
    bool branchChosen;
    size_t frames;      // the open blocks where the conditional starts
    int64_t opaque;
};

class CppLevelScanner {
public:
    explicit CppLevelScanner(ResultList& results) : results_(results) { frames_.push_back({Frame::kFile, {}, 0, 0}); }

    // `present` holds at least the units of L.
    void ScanLine(std::u16string_view L, int32_t i, const UnitSet& present);

private:
    struct Frame {
        enum Kind { kFile, kNamespace, kExtern, kClass } kind;
        std::u16string name;   // the class's own name, or the namespace's qualified one
        // The frame whose name the members go under: this one, or for an anonymous
        // struct or an extern "C" block the one around it. An index, so that nesting
        // does not copy names.
        size_t owner;
        int16_t access;
    };

    void Directive(std::u16string_view d);
    bool Skipping() const { return !conditions_.empty() && conditions_.back().ignoring; }
    // A statement or body is open: the branches of a conditional cannot all count.
    // So is a block that has just opened, until its first statement ends.
    bool Incomplete() const { return fresh_ || opaque_ > 0 || parens_ > 0 || braces_ > 0 || !TrimmedView(stmt_).empty(); }
    void Append(std::u16string_view text, int32_t i);
    void OpenBlock(int32_t i);
    void CloseBlock(int32_t i);
    void Finish();
    bool TakeAccessLabel();
    void Emit(std::u16string_view head, const CppDeclaration& d);
    int32_t LineOf(size_t offset) const;
    void ClearStatement();
    const Frame& Top() const { return frames_.back(); }
    // The class or namespace the statements at this level belong to ("" at file level).
    const std::u16string& Owner() const { return frames_[Top().owner].name; }

    ResultList& results_;
    std::vector<Frame> frames_;
    std::vector<Condition> conditions_;
    size_t unrecorded_ = 0;  // open conditionals past kMaxConditions
    bool continued_ = false; // the previous directive line ended with a backslash
    int64_t opaque_ = 0;     // depth inside a body whose statements are not declarations
    // The statement being joined, with the line each of its pieces came from.
    std::u16string stmt_;
    std::vector<std::pair<size_t, int32_t>> starts_;
    int64_t parens_ = 0;  // open ( and [ in the statement
    int64_t braces_ = 0;  // open { inside the statement (initialisers, lambdas)
    int32_t lastLine_ = 0;
    bool fresh_ = false;   // a namespace, class or extern block opened and no statement ended in it yet
    std::u16string read_;  // a function read, as the result list takes it
};

void CppLevelScanner::ClearStatement() {
    stmt_.clear();
    starts_.clear();
    parens_ = 0;
    braces_ = 0;
}

void CppLevelScanner::Append(std::u16string_view text, int32_t i) {
    if (stmt_.empty()) {
        const size_t b = text.find_first_not_of(u' ');
        if (b == npos) return;
        text.remove_prefix(b);
    }
    if (starts_.empty() || lastLine_ != i) {
        starts_.emplace_back(stmt_.size(), i);
        lastLine_ = i;
    }
    stmt_.append(text);
}

int32_t CppLevelScanner::LineOf(size_t offset) const {
    auto it = std::upper_bound(starts_.begin(), starts_.end(), offset,
                               [](size_t o, const std::pair<size_t, int32_t>& s) { return o < s.first; });
    return it == starts_.begin() ? (starts_.empty() ? lastLine_ : starts_.front().second) : std::prev(it)->second;
}

void CppLevelScanner::Emit(std::u16string_view head, const CppDeclaration& d) {
    const int16_t scope = Top().kind == Frame::kClass ? Top().access : int16_t{UNKNOWN_SCOPE};
    const int32_t line = LineOf(static_cast<size_t>(head.data() - stmt_.data()) + d.nameAt);
    if (!d.isFunction) {
        results_.Add(head, line, scope, Owner());  // the second pass finds every declarator
        return;
    }
    read_.assign(d.Member()).push_back(kReadSeparator);
    read_.append(d.text);
    results_.Add(read_, line, scope, d.qualifier.empty() ? std::u16string_view(Owner()) : d.qualifier).Bag = kReadFunction;
}

void CppLevelScanner::Directive(std::u16string_view d) {
    d = TrimmedView(d.substr(1));
    const std::u16string_view word = FirstCppWord(d);
    const bool opens = word == u"if" || word == u"ifdef" || word == u"ifndef";
    if (opens && (unrecorded_ > 0 || conditions_.size() >= kMaxConditions)) {
        ++unrecorded_;
    } else if (unrecorded_ > 0) {
        if (word == u"endif") --unrecorded_;
    } else if (opens) {
        const bool never = word == u"if" && TrimmedView(d.substr(2)) == u"0";
        Condition c{};
        c.ignoreAll = Skipping();
        c.singleBranch = Incomplete();
        c.ignoring = c.ignoreAll || never;
        c.branchChosen = !c.ignoring;
        c.frames = frames_.size();
        c.opaque = opaque_;
        conditions_.push_back(c);
    } else if ((word == u"elif" || word == u"else") && !conditions_.empty()) {
        Condition& c = conditions_.back();
        if (Incomplete() || c.frames != frames_.size() || c.opaque != opaque_) c.singleBranch = true;
        c.ignoring = c.ignoreAll || (c.branchChosen && c.singleBranch);
        if (!c.ignoring) c.branchChosen = true;
    } else if (word == u"endif" && !conditions_.empty()) {
        conditions_.pop_back();
    }
}

bool CppLevelScanner::TakeAccessLabel() {
    if (Top().kind != Frame::kClass || stmt_.size() > 20) return false;
    const std::u16string_view label = TrimmedView(stmt_);
    for (const AccessLabel& a : kAccessLabels) {
        if (a.label == label) {
            frames_.back().access = a.scope;
            ClearStatement();
            return true;
        }
    }
    return false;
}

void CppLevelScanner::OpenBlock(int32_t i) {
    const std::u16string_view head = TrimmedView(stmt_);
    const std::u16string_view body = SkipCppPrefixes(head);
    std::u16string_view word = FirstCppWord(body);
    const bool room = frames_.size() < kMaxOpenBlocks;
    if (word == u"inline" && FirstCppWord(body.substr(6)) == u"namespace") word = u"namespace";
    if (room && word == u"namespace") {
        // The qualified name alone: attributes and macros after it name nothing.
        const std::u16string_view rest = SkipCppPrefixes(body.substr(body.find(u"namespace") + 9));
        size_t end = 0;
        while (end < rest.size() && (IsCppWordUnit(rest[end]) || rest[end] == u':')) ++end;
        const std::u16string_view name = rest.substr(0, end);
        const std::u16string& outer = Owner();
        std::u16string qualified = outer;
        if (!name.empty() && name.size() <= kMaxNamespaceName && outer.size() <= kMaxNamespaceName) {
            if (!qualified.empty()) qualified.append(u"::");
            qualified.append(name);
        }
        frames_.push_back({Frame::kNamespace, std::move(qualified), frames_.size(), UNKNOWN_SCOPE});
        fresh_ = true;
        ClearStatement();
        return;
    }
    if (room && word == u"extern" && TrimmedView(body.substr(6)) == u"\"\"") {
        frames_.push_back({Frame::kExtern, {}, Top().owner, Top().access});
        fresh_ = true;
        ClearStatement();
        return;
    }
    if (room) {
        if (const CppClassHead cls = ReadCppClassHead(head); !cls.kind.empty()) {
            const int16_t access = cls.kind == u"class" ? PRIVATE_SCOPE : PUBLIC_SCOPE;
            // An anonymous struct or union lends its members to the class around it.
            const size_t owner = cls.name.empty() ? Top().owner : frames_.size();
            frames_.push_back({Frame::kClass, std::u16string(cls.name), owner, access});
            fresh_ = true;
            ClearStatement();
            return;
        }
    }
    CppDeclaration d;
    if (word != u"enum" && ReadCppDeclaration(head, Owner(), d)) {
        const char16_t last = head.back();
        const bool memberInit =
            d.isFunction && (IsCppWordUnit(last) || last == u'>') &&
            HoldsInitialiserList(head.substr(static_cast<size_t>(d.text.data() - head.data()) + d.text.size()));
        if (!d.isFunction || memberInit) {
            // An initialiser in braces (int x{1}, T v = {...}, a lambda): the statement
            // goes on to its ";".
            ++braces_;
            Append(u"{", i);
            return;
        }
        Emit(head, d);
    }
    ++opaque_;
    ClearStatement();
}

void CppLevelScanner::CloseBlock(int32_t i) {
    fresh_ = false;
    if (frames_.size() > 1) {
        const Frame& f = frames_.back();
        if (f.kind == Frame::kClass && !f.name.empty()) results_.Add(kEndClassText, i, kResultEndClass, f.name);
        frames_.pop_back();
    }
    ClearStatement();
}

void CppLevelScanner::Finish() {
    fresh_ = false;
    const std::u16string_view head = TrimmedView(stmt_);
    if (starts_.size() == 1) {
        // On one line the name's line is known: the second pass reads the statement.
        const int16_t scope = Top().kind == Frame::kClass ? Top().access : int16_t{UNKNOWN_SCOPE};
        results_.Add(head, starts_.front().second, scope, Owner());
    } else if (CppDeclaration d; !head.empty() && ReadCppDeclaration(head, Owner(), d)) {
        Emit(head, d);
    }
    ClearStatement();
}

void CppLevelScanner::ScanLine(std::u16string_view L, int32_t i, const UnitSet& present) {
    if (continued_) {
        continued_ = !L.empty() && L.back() == u'\\';
        return;
    }
    const size_t first = L.find_first_not_of(u' ');
    if (first == npos) return;
    if (L[first] == u'#') {
        Directive(L.substr(first));
        const std::u16string_view t = TrimmedView(L);
        continued_ = !t.empty() && t.back() == u'\\';
        return;
    }
    if (Skipping()) return;
    // Inside a body only braces count.
    if (opaque_ > 0 && !present.MayHold(kOpening) && !present.MayHold(kClosing)) return;

    for (size_t k = first; k < L.size();) {
        if (opaque_ > 0) {
            const size_t next = NextBrace(L, k);
            if (next == npos) break;
            opaque_ += L[next] == u'{' ? 1 : -1;
            if (opaque_ == 0) fresh_ = false;  // a body ends its statement
            k = next + 1;
            continue;
        }
        const size_t next = NextSpecial(L, k);
        if (next != k) {
            Append(L.substr(k, next == npos ? npos : next - k), i);
            if (next == npos) break;
            k = next;
        }
        const char16_t c = L[k];
        switch (c) {
            case u'{':
                if (parens_ > 0 || braces_ > 0) {
                    ++braces_;
                    Append(u"{", i);
                } else {
                    OpenBlock(i);
                }
                break;
            case u'}':
                if (braces_ > 0) {
                    --braces_;
                    Append(u"}", i);
                } else {
                    CloseBlock(i);
                }
                break;
            case u';':
                if (parens_ > 0 || braces_ > 0) Append(u";", i);
                else Finish();
                break;
            case u'(':
            case u'[':
                ++parens_;
                Append(L.substr(k, 1), i);
                break;
            case u')':
            case u']':
                if (parens_ > 0) --parens_;
                Append(L.substr(k, 1), i);
                break;
            case u':':
                if (k + 1 < L.size() && L[k + 1] == u':') {
                    Append(u"::", i);
                    ++k;
                } else if (parens_ > 0 || braces_ > 0 || !TakeAccessLabel()) {
                    Append(u":", i);
                }
                break;
            default:
                break;
        }
        ++k;
    }
    if (opaque_ > 0 || stmt_.empty()) return;
    if (parens_ == 0 && braces_ == 0 && stmt_.size() <= kMaxMacroLine && IsLoneMacro(stmt_)) {
        ClearStatement();
        return;
    }
    if (stmt_.back() != u' ') stmt_.push_back(u' ');
}

}  // namespace

void TakeCppLevelsOut(const std::vector<std::u16string>& lines, int32_t lineCount, ResultList& results,
                      const std::vector<UnitSet>* present) {
    CppLevelScanner scanner(results);
    const UnitSet anything = UnitSet::Anything();
    Trap(kModule, "Sub TakeLevelsOut", [&] {
        for (int32_t i = 1; i <= lineCount; ++i) {
            const size_t k = static_cast<size_t>(i);
            scanner.ScanLine(lines.at(k), i, present ? (*present)[k] : anything);
        }
    });
}

}  // namespace kestrel
