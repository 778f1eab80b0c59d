// What is not a function: initialiser lists, statements in bodies, control flow,
// placement new, sizeof, decltype, casts and macro calls.
class Cache {
    Q_OBJECT
    Q_PROPERTY(int size READ size)
public:
    Cache(int size);
    int size() const;
private:
    int size_;
    Store store_;
};

Cache::Cache(int size)
    : size_(size),
      store_{size, 4}
{
    if (size > 0) {
        Resize(size);
    } else if (size < 0) {
        Fail();
    }
    do {
        Step();
    } while (0);
    new (buffer) Item(size);
    auto n = sizeof(Item);
    decltype(size) copy = static_cast<int>(size);
    LOG_DEBUG("created");
}

Q_DECLARE_METATYPE(Cache)
DEFINE_HANDLER(Cache, OnEvent)
TEST_F(CacheTest, Grows) {
    EXPECT_EQ(1, 1);
}

struct Guarded {
    int value GUARDED_BY(mutex_);
    void Update() REQUIRES(mutex_);
};
