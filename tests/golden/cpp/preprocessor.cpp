// #define bodies are not code; of #if branches that leave a block open, or open a
// block's first lines, only the first counts; extern "C" blocks are transparent.
#define SWAP(a, b) \
    do {           \
        auto t = a; \
        a = b;     \
        b = t;     \
    } while (0)

#if defined(_WIN32)
int wmain(int argc, wchar_t** argv) {
#else
int main(int argc, char** argv) {
#endif
    return 0;
}

#ifdef FAST
int Compute(int x);
#else
int Compute(long x);
#endif

#if 0
int Disabled();
#else
int Enabled();
#endif

extern "C" {
int c_entry(void);
}

extern "C++" {
void cpp_entry();
}

extern "C" int single_entry(int);

class Platform {
#if defined(_WIN32)
    void WinOnly();
#else
    void PosixOnly();
#endif
    int after_branches;
};
