// A read-only JSON tree for the device loader. The reader takes strict JSON in one pass and
// points into the text wherever a string holds no escape, so a large description is parsed
// with a handful of allocations. Whatever it doesn't take (a syntax error, a duplicate key,
// a lenient form such as "1." or "\q") is left to Qt's parser, whose verdict and messages
// stay the loader's, and whose document is then copied into the same tree.
#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

class QJsonDocument;

namespace zorhost::device::json {

enum class Kind : std::uint8_t { Null, False, True, Number, String, Array, Object };

struct Node {
    Kind kind = Kind::Null;
    // A key Qt's document lists but can't look up (one that opened with a byte order mark):
    // it counts among the keys of its object, yet no look-up finds it.
    bool unreachable = false;
    std::uint32_t count = 0; // bytes of a string, items of an array, members of an object
    union {
        double number;
        const char* text;
        std::uint32_t first; // index of the first child; an object's are key, value, key, ...
    };
    Node() : number(0) {}
};

class Tree;
class Object;
class Array;

// A value, or nothing at all where a key is missing.
class Value {
public:
    Value() = default;
    Value(const Tree* tree, const Node* node) : tree_(tree), node_(node) {}

    bool IsUndefined() const { return node_ == nullptr; }
    bool IsString() const { return node_ && node_->kind == Kind::String; }
    bool IsNumber() const { return node_ && node_->kind == Kind::Number; }
    bool IsBool() const {
        return node_ && (node_->kind == Kind::True || node_->kind == Kind::False);
    }
    bool IsArray() const { return node_ && node_->kind == Kind::Array; }
    bool IsObject() const { return node_ && node_->kind == Kind::Object; }

    std::string_view Text() const {
        return IsString() ? std::string_view(node_->text, node_->count) : std::string_view();
    }
    double Number() const { return IsNumber() ? node_->number : 0; }
    bool Bool() const { return node_ && node_->kind == Kind::True; }
    Object ToObject() const; // empty unless an object
    Array ToArray() const;   // empty unless an array

private:
    const Tree* tree_ = nullptr;
    const Node* node_ = nullptr;
};

class Object {
public:
    Object() = default;
    Object(const Tree* tree, const Node* members, std::uint32_t count)
        : tree_(tree), members_(members), count_(count) {}

    std::uint32_t Size() const { return count_; }
    std::string_view KeyAt(std::uint32_t i) const {
        const Node& k = members_[2 * i];
        return std::string_view(k.text, k.count);
    }
    Value ValueAt(std::uint32_t i) const { return Value(tree_, &members_[2 * i + 1]); }
    Value Find(std::string_view key) const;
    bool Contains(std::string_view key) const { return !Find(key).IsUndefined(); }

private:
    const Tree* tree_ = nullptr;
    const Node* members_ = nullptr;
    std::uint32_t count_ = 0;
};

class Array {
public:
    Array() = default;
    Array(const Tree* tree, const Node* items, std::uint32_t count)
        : tree_(tree), items_(items), count_(count) {}

    std::uint32_t Size() const { return count_; }
    bool IsEmpty() const { return count_ == 0; }
    Value operator[](std::uint32_t i) const { return Value(tree_, &items_[i]); }

private:
    const Tree* tree_ = nullptr;
    const Node* items_ = nullptr;
    std::uint32_t count_ = 0;
};

class Tree {
public:
    // Strict JSON whose top level is an object and whose objects hold each key once. False
    // for anything else; the tree is then unusable. The text must outlive the tree.
    bool Read(std::string_view json);
    // A copy of a document Qt's parser has taken; its texts are held by the tree.
    void CopyFrom(const QJsonDocument& doc);

    Object Root() const { return Value(this, &root_).ToObject(); }
    const Node* At(std::uint32_t index) const { return nodes_.data() + index; }

private:
    friend class Reader;
    Node root_;
    std::vector<Node> nodes_;
    std::deque<std::string> decoded_; // texts that are not a slice of the source
};

} // namespace zorhost::device::json
