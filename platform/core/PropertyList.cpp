#include "PropertyList.h"

#include "BinaryPropertyList.h"

#include <plist/plist.h>

#include <QFile>

#include <cstdint>
#include <cstdlib>
#include <memory>

namespace velmora {
namespace {

// The library nests its calls as deep as the file nests its arrays, at most one level in 7 bytes.
// With files of this size that stays far from the end of the stack.
constexpr qint64 kMaxFileSize = qint64{256} * 1024;
constexpr int kMaxDepth = 32;

struct FreeTree {
    void operator()(void* root) const { plist_free(root); }
};
struct FreeMemory {
    void operator()(void* memory) const { std::free(memory); } // NOLINT: it comes from malloc
};
using Memory = std::unique_ptr<void, FreeMemory>;

/// Turns the library's tree into values.
class Reader {
public:
    QVariant valueOf(plist_t node);
    bool foundTooDeep() const { return tooDeep_; }

private:
    QVariantList listOf(plist_t array);
    QVariantMap mapOf(plist_t dictionary);

    int depth_ = 0;
    bool tooDeep_ = false;
};

QString textOf(plist_t node) {
    std::uint64_t length = 0;
    const char* text = plist_get_string_ptr(node, &length);
    return QString::fromUtf8(text, static_cast<qsizetype>(length));
}

QVariant numberOf(plist_t node) {
    std::uint64_t number = 0; // negative numbers come as their two's complement
    plist_get_uint_val(node, &number);
    return static_cast<qlonglong>(number);
}

QVariant realOf(plist_t node) {
    double number = 0;
    plist_get_real_val(node, &number);
    return number;
}

QVariant Reader::valueOf(plist_t node) {
    switch (plist_get_node_type(node)) {
    case PLIST_ARRAY:
        return listOf(node);
    case PLIST_DICT:
        return mapOf(node);
    case PLIST_STRING:
        return textOf(node);
    case PLIST_UINT:
        return numberOf(node);
    case PLIST_REAL:
        return realOf(node);
    case PLIST_BOOLEAN:
        return plist_bool_val_is_true(node) != 0;
    default:
        return {};
    }
}

QVariantList Reader::listOf(plist_t array) {
    QVariantList list;
    if (++depth_ > kMaxDepth) {
        tooDeep_ = true;
    } else {
        plist_array_iter created = nullptr;
        plist_array_new_iter(array, &created);
        const Memory owner(created);
        plist_t item = nullptr;
        for (plist_array_next_item(array, created, &item); item != nullptr;
             plist_array_next_item(array, created, &item)) {
            list.append(valueOf(item));
        }
    }
    --depth_;
    return list;
}

QVariantMap Reader::mapOf(plist_t dictionary) {
    QVariantMap map;
    if (++depth_ > kMaxDepth) {
        tooDeep_ = true;
    } else {
        plist_dict_iter created = nullptr;
        plist_dict_new_iter(dictionary, &created);
        const Memory owner(created);
        for (bool goesOn = true; goesOn;) {
            char* key = nullptr;
            plist_t item = nullptr;
            plist_dict_next_item(dictionary, created, &key, &item);
            const Memory keyOwner(key);
            goesOn = key != nullptr && item != nullptr;
            if (goesOn) {
                map.insert(QString::fromUtf8(key), valueOf(item));
            }
        }
    }
    --depth_;
    return map;
}

QByteArray contentOf(const QString& path) {
    QFile file(path);
    if (path.isEmpty() || !file.open(QIODevice::ReadOnly)) {
        return {};
    }
    QByteArray content = file.read(kMaxFileSize + 1);
    return content.size() <= kMaxFileSize ? content : QByteArray();
}

} // namespace

QVariant readPropertyList(const QString& path) {
    const QByteArray content = contentOf(path);
    const auto size = static_cast<std::uint32_t>(content.size());
    if (size == 0 ||
        (plist_is_binary(content.data(), size) != 0 && !isSafeBinaryPropertyList(content))) {
        return {};
    }
    plist_t created = nullptr;
    plist_from_memory(content.data(), size, &created);
    const std::unique_ptr<void, FreeTree> root(created);
    Reader reader;
    const QVariant value = created != nullptr ? reader.valueOf(created) : QVariant();
    return reader.foundTooDeep() ? QVariant() : value;
}

} // namespace velmora
