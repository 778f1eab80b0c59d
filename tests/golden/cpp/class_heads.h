// Macros, attributes and alignment between the class word and the name are skipped;
// "final" after the name is ignored; class A::B defines B.
class LIB_EXPORT Cache {
public:
    void Clear();
};

struct [[nodiscard]] Result {
    bool ok;
};

struct alignas(16) Vector4 {
    float lanes[4];
};

class __declspec(dllexport) Window {
public:
    void Show();
};

struct __attribute__((packed)) Header {
    short tag;
};

class Derived final : public Base {
public:
    ~Derived() override;
};

class Outer::Nested {
public:
    int Depth() const;
};

class API_EXPORT Widget final
    : public QObject
{
public:
    explicit Widget(QObject* parent = nullptr);
};
