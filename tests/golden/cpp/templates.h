// template prefixes are skipped, on one line or several, and open no class.
template <class T>
class Box {
public:
    template <class... Args>
    void emplace(Args&&... args);
    T value;
};

template <typename Key,
          typename Value = int>
Value Lookup(const Key& key);

template <class T> T Max(T a, T b) { return a > b ? a : b; }

template <typename T>
    requires std::is_integral_v<T> && (sizeof(T) > 1)
T Widen(T value);

template <>
struct Box<void> {
    void reset();
};

template <class T>
void Box<T>::emplace() {
}

std::map<int, std::vector<std::string>> index_by_length;
std::function<void(int)> callback;
