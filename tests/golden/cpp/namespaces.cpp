// Namespace blocks are seen through: classes keep their own names, free functions
// and variables go to a container named by the qualified namespace.
namespace db {

int open_count = 0;

class Store {
public:
    void Compact();
};

void Store::Compact() {
    int local = 0;
}

void Flush(Store& store) {
}

namespace detail {
bool Check(int code);
}

inline namespace v2 {
int Version() { return 2; }
}

}  // namespace db

namespace {
int hidden_counter;
void Helper() {}
}

namespace net::http {
struct Request;
void Send(const Request& request);
}

void Global();
