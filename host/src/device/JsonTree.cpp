#include "JsonTree.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

namespace zorhost::device::json {

Object Value::ToObject() const {
    if (!IsObject())
        return {};
    return Object(tree_, tree_->At(node_->first), node_->count);
}

Array Value::ToArray() const {
    if (!IsArray())
        return {};
    return Array(tree_, tree_->At(node_->first), node_->count);
}

namespace {

// Keys are short and most differ in length or first letter: look at those before a call.
bool SameKey(const Node& k, std::string_view key) {
    return k.count == key.size() &&
           (key.empty() ||
            (k.text[0] == key[0] && std::memcmp(k.text, key.data(), key.size()) == 0));
}

} // namespace

// Objects of a description hold a few dozen keys at most: a scan beats any index.
Value Object::Find(std::string_view key) const {
    for (std::uint32_t i = 0; i < count_; ++i) {
        if (SameKey(members_[2 * i], key) && !members_[2 * i].unreachable)
            return Value(tree_, &members_[2 * i + 1]);
    }
    return {};
}

namespace {

// Deeper than any description nests; left to Qt's parser, which has its own limit.
constexpr int kMaxDepth = 200;

bool IsSpace(char c) {
    return c == ' ' || c == '\n' || c == '\r' || c == '\t';
}

int HexDigit(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

void PutUtf8(std::string& out, std::uint32_t cp) {
    if (cp < 0x80) {
        out += char(cp);
    } else if (cp < 0x800) {
        out += char(0xC0 | cp >> 6);
        out += char(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
        out += char(0xE0 | cp >> 12);
        out += char(0x80 | (cp >> 6 & 0x3F));
        out += char(0x80 | (cp & 0x3F));
    } else {
        out += char(0xF0 | cp >> 18);
        out += char(0x80 | (cp >> 12 & 0x3F));
        out += char(0x80 | (cp >> 6 & 0x3F));
        out += char(0x80 | (cp & 0x3F));
    }
}

// Length of the well-formed UTF-8 sequence at p (its lead byte >= 0x80), or 0. A byte order
// mark counts as malformed: Qt's parser drops one that opens a string, so it decides those.
std::size_t Utf8Length(const unsigned char* p, const unsigned char* end) {
    auto cont = [&](std::size_t i) { return p + i < end && (p[i] & 0xC0) == 0x80; };
    const unsigned char b = p[0];
    if (b >= 0xC2 && b <= 0xDF)
        return cont(1) ? 2 : 0;
    if (b >= 0xE0 && b <= 0xEF) {
        if (!cont(1) || !cont(2))
            return 0;
        if ((b == 0xE0 && p[1] < 0xA0) || (b == 0xED && p[1] >= 0xA0))
            return 0; // overlong, or a surrogate
        if (b == 0xEF && p[1] == 0xBB && p[2] == 0xBF)
            return 0;
        return 3;
    }
    if (b >= 0xF0 && b <= 0xF4) {
        if (!cont(1) || !cont(2) || !cont(3))
            return 0;
        if ((b == 0xF0 && p[1] < 0x90) || (b == 0xF4 && p[1] >= 0x90))
            return 0; // overlong, or beyond U+10FFFF
        return 4;
    }
    return 0;
}

} // namespace

class Reader {
public:
    Reader(Tree& tree, std::string_view json)
        : tree_(tree), p_(json.data()), end_(json.data() + json.size()) {}

    bool Document() {
        SkipSpace();
        if (p_ == end_ || *p_ != '{' || !Value(tree_.root_, 0))
            return false;
        SkipSpace();
        return p_ == end_;
    }

private:
    Tree& tree_;
    const char* p_;
    const char* end_;
    std::vector<Node> pending_; // children of the open containers, innermost last

    void SkipSpace() {
        while (p_ != end_ && IsSpace(*p_))
            ++p_;
    }

    bool Literal(const char* word, std::size_t size) {
        if (std::size_t(end_ - p_) < size || std::memcmp(p_, word, size) != 0)
            return false;
        p_ += size;
        return true;
    }

    bool Value(Node& out, int depth) {
        if (p_ == end_)
            return false;
        switch (*p_) {
        case '{':
            return Container(out, Kind::Object, '}', depth);
        case '[':
            return Container(out, Kind::Array, ']', depth);
        case '"':
            out.kind = Kind::String;
            return String(out);
        case 't':
            out.kind = Kind::True;
            return Literal("true", 4);
        case 'f':
            out.kind = Kind::False;
            return Literal("false", 5);
        case 'n':
            out.kind = Kind::Null;
            return Literal("null", 4);
        default:
            out.kind = Kind::Number;
            return Number(out);
        }
    }

    // Children are collected on the pending stack and moved together when the container
    // closes, so that each container's children lie side by side in the tree.
    bool Container(Node& out, Kind kind, char close, int depth) {
        if (depth >= kMaxDepth)
            return false;
        ++p_;
        const std::size_t base = pending_.size();
        SkipSpace();
        if (p_ != end_ && *p_ == close) {
            ++p_;
        } else {
            for (;;) {
                if (kind == Kind::Object) {
                    SkipSpace();
                    if (p_ == end_ || *p_ != '"')
                        return false;
                    Node key;
                    key.kind = Kind::String;
                    if (!String(key))
                        return false;
                    pending_.push_back(key);
                    SkipSpace();
                    if (p_ == end_ || *p_ != ':')
                        return false;
                    ++p_;
                }
                SkipSpace();
                Node value;
                if (!Value(value, depth + 1))
                    return false;
                pending_.push_back(value);
                SkipSpace();
                if (p_ == end_)
                    return false;
                if (*p_ == close) {
                    ++p_;
                    break;
                }
                if (*p_ != ',')
                    return false;
                ++p_;
            }
        }
        const std::size_t n = pending_.size() - base;
        out.kind = kind;
        out.count = std::uint32_t(kind == Kind::Object ? n / 2 : n);
        out.first = std::uint32_t(tree_.nodes_.size());
        tree_.nodes_.insert(tree_.nodes_.end(), pending_.begin() + std::ptrdiff_t(base),
                            pending_.end());
        pending_.resize(base);
        return kind != Kind::Object || UniqueKeys(out);
    }

    bool UniqueKeys(const Node& object) const {
        const Node* members = tree_.nodes_.data() + object.first;
        auto key = [&](std::uint32_t i) {
            return std::string_view(members[2 * i].text, members[2 * i].count);
        };
        if (object.count <= 32) {
            for (std::uint32_t i = 1; i < object.count; ++i)
                for (std::uint32_t j = 0; j < i; ++j)
                    if (SameKey(members[2 * j], key(i)))
                        return false;
            return true;
        }
        std::vector<std::string_view> keys(object.count);
        for (std::uint32_t i = 0; i < object.count; ++i)
            keys[i] = key(i);
        std::sort(keys.begin(), keys.end());
        return std::adjacent_find(keys.begin(), keys.end()) == keys.end();
    }

    bool String(Node& out) {
        const char* start = ++p_;
        for (;;) {
            if (p_ == end_)
                return false;
            const auto c = static_cast<unsigned char>(*p_);
            if (c == '"') {
                out.text = start;
                out.count = std::uint32_t(p_ - start);
                ++p_;
                return true;
            }
            if (c == '\\')
                return EscapedString(out, start);
            if (c < 0x20)
                return false;
            if (c < 0x80) {
                ++p_;
                continue;
            }
            const std::size_t n = Utf8Length(reinterpret_cast<const unsigned char*>(p_),
                                             reinterpret_cast<const unsigned char*>(end_));
            if (n == 0)
                return false;
            p_ += n;
        }
    }

    // The rare string with an escape is decoded into text the tree holds.
    bool EscapedString(Node& out, const char* start) {
        std::string& text = tree_.decoded_.emplace_back(start, p_);
        for (;;) {
            if (p_ == end_)
                return false;
            const auto c = static_cast<unsigned char>(*p_);
            if (c == '"') {
                ++p_;
                break;
            }
            if (c < 0x20)
                return false;
            if (c >= 0x80) {
                const std::size_t n = Utf8Length(reinterpret_cast<const unsigned char*>(p_),
                                                 reinterpret_cast<const unsigned char*>(end_));
                if (n == 0)
                    return false;
                text.append(p_, n);
                p_ += n;
                continue;
            }
            if (c != '\\') {
                text += char(c);
                ++p_;
                continue;
            }
            if (++p_ == end_)
                return false;
            const char e = *p_++;
            switch (e) {
            case '"':
            case '\\':
            case '/':
                text += e;
                break;
            case 'b':
                text += '\b';
                break;
            case 'f':
                text += '\f';
                break;
            case 'n':
                text += '\n';
                break;
            case 'r':
                text += '\r';
                break;
            case 't':
                text += '\t';
                break;
            case 'u': {
                std::uint32_t cp = 0;
                if (!Hex4(cp))
                    return false;
                if (cp >= 0xD800 && cp <= 0xDBFF) {
                    std::uint32_t low = 0;
                    if (end_ - p_ < 2 || p_[0] != '\\' || p_[1] != 'u')
                        return false;
                    p_ += 2;
                    if (!Hex4(low) || low < 0xDC00 || low > 0xDFFF)
                        return false;
                    cp = 0x10000 + ((cp - 0xD800) << 10) + (low - 0xDC00);
                } else if ((cp >= 0xDC00 && cp <= 0xDFFF) || cp == 0) {
                    return false; // a lone surrogate or a NUL: Qt's parser decides
                }
                PutUtf8(text, cp);
                break;
            }
            default:
                return false;
            }
        }
        out.text = text.data();
        out.count = std::uint32_t(text.size());
        return true;
    }

    bool Hex4(std::uint32_t& cp) {
        if (end_ - p_ < 4)
            return false;
        for (int i = 0; i < 4; ++i) {
            const int d = HexDigit(*p_++);
            if (d < 0)
                return false;
            cp = cp * 16 + std::uint32_t(d);
        }
        return true;
    }

    // -? (0 | [1-9][0-9]*) (. [0-9]+)? ([eE] [+-]? [0-9]+)?
    bool Number(Node& out) {
        const char* start = p_;
        auto digits = [&] {
            const char* from = p_;
            while (p_ != end_ && *p_ >= '0' && *p_ <= '9')
                ++p_;
            return p_ != from;
        };
        if (p_ != end_ && *p_ == '-')
            ++p_;
        if (p_ != end_ && *p_ == '0')
            ++p_;
        else if (!digits())
            return false;
        bool whole = true;
        if (p_ != end_ && *p_ == '.') {
            ++p_;
            whole = false;
            if (!digits())
                return false;
        }
        if (p_ != end_ && (*p_ == 'e' || *p_ == 'E')) {
            ++p_;
            whole = false;
            if (p_ != end_ && (*p_ == '+' || *p_ == '-'))
                ++p_;
            if (!digits())
                return false;
        }
        // A whole number in 64 bits is taken as an integer, so "-0" is 0 as Qt has it.
        if (whole) {
            long long n = 0;
            const auto r = std::from_chars(start, p_, n);
            if (r.ec == std::errc() && r.ptr == p_) {
                out.number = double(n);
                return true;
            }
        }
        double d = 0;
        const auto r = std::from_chars(start, p_, d);
        if (r.ec != std::errc() || r.ptr != p_ || !std::isfinite(d))
            return false;
        out.number = d;
        return true;
    }
};

bool Tree::Read(std::string_view json) {
    nodes_.clear();
    decoded_.clear();
    // About one node for every 7 or 8 bytes of a description; a guess, not a limit.
    nodes_.reserve(json.size() / 6 + 16);
    return Reader(*this, json).Document();
}

namespace {

class Copier {
public:
    explicit Copier(std::vector<Node>& nodes, std::deque<std::string>& texts)
        : nodes_(nodes), texts_(texts) {}

    void Text(Node& out, const QString& s) {
        const std::string& t = texts_.emplace_back(s.toStdString());
        out.kind = Kind::String;
        out.text = t.data();
        out.count = std::uint32_t(t.size());
    }

    void Value(Node& out, const QJsonValue& v) {
        switch (v.type()) {
        case QJsonValue::Bool:
            out.kind = v.toBool() ? Kind::True : Kind::False;
            break;
        case QJsonValue::Double:
            out.kind = Kind::Number;
            out.number = v.toDouble();
            break;
        case QJsonValue::String:
            Text(out, v.toString());
            break;
        case QJsonValue::Array:
            Array(out, v.toArray());
            break;
        case QJsonValue::Object:
            Object(out, v.toObject());
            break;
        default:
            out.kind = Kind::Null;
            break;
        }
    }

    void Array(Node& out, const QJsonArray& a) {
        std::vector<Node> items(std::size_t(a.size()));
        for (qsizetype i = 0; i < a.size(); ++i)
            Value(items[std::size_t(i)], a[i]);
        Place(out, Kind::Array, items, std::uint32_t(a.size()));
    }

    void Object(Node& out, const QJsonObject& o) {
        std::vector<Node> members;
        members.reserve(std::size_t(o.size()) * 2);
        for (auto it = o.begin(); it != o.end(); ++it) {
            Node key, value;
            Text(key, it.key());
            key.unreachable = !o.contains(it.key());
            Value(value, it.value());
            members.push_back(key);
            members.push_back(value);
        }
        Place(out, Kind::Object, members, std::uint32_t(o.size()));
    }

private:
    std::vector<Node>& nodes_;
    std::deque<std::string>& texts_;

    void Place(Node& out, Kind kind, const std::vector<Node>& children, std::uint32_t count) {
        out.kind = kind;
        out.count = count;
        out.first = std::uint32_t(nodes_.size());
        nodes_.insert(nodes_.end(), children.begin(), children.end());
    }
};

} // namespace

void Tree::CopyFrom(const QJsonDocument& doc) {
    nodes_.clear();
    decoded_.clear();
    Copier(nodes_, decoded_).Object(root_, doc.object());
}

} // namespace zorhost::device::json
