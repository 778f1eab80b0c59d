// Declarations whose return type, name or parenthesis stands on its own line, and
// modern declaration forms.
void
handle
( const Info& info,
  int flags)
{
}

static std::unique_ptr<Engine>
MakeEngine(int cylinders);

class Engine {
public:
    Engine() = default;
    Engine(const Engine&) = delete;
    Engine& operator=(Engine&&) noexcept(true);
    void Start() override;
    auto Power() const -> double;
    explicit operator bool() const;
    operator std::string() const;
    operator const char*() const;
    bool operator==(const Engine& other) const;
    int operator()(int x);
    void Stop()
        const
        noexcept;
};

Engine::operator std::string() const {
    return {};
}

long double operator""_km(long double value);
Engine::operator Callback<void(int)>() const;
HRESULT
Engine::Query(int id);
