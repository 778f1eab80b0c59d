// Declarations kept although some tools miss them: friends and overriding
// destructors.
class Node : public Base {
public:
    ~Node() override;
    friend bool operator<(const Node& a, const Node& b);
    friend void swap(Node& a, Node& b) noexcept;
    friend class Tree;
};
