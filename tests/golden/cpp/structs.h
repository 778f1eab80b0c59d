// struct and union bodies are class bodies with public as the default access;
// class keeps private.
struct Point {
    int x;
    int y;
    double Length() const;
private:
    int cache_;
};

union Value {
    int whole;
    double real;
};

class Shape {
    int sides_;
public:
    virtual double Area() const = 0;
};

struct Outer {
    struct Inner {
        int depth;
    };
    union {
        int raw;
        float scaled;
    };
    Inner inner;
};
struct Pair { int first, *second = nullptr, third[2]; };
