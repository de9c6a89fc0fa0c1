#include "zorhost/device/DeviceLoader.h"
#include "JsonTree.h"
#include "Loader.h"
#include "zorhost/InstallLayout.h"
#include "zorhost/device/DeviceChecks.h"
#include "zorhost/device/JsonShape.h"
#include "zorhost/files/BoundedRead.h"

#include <QByteArray>
#include <QDir>
#include <QJsonDocument>
#include <QJsonParseError>

#include <algorithm>

namespace zorhost::device {

namespace {

std::string Std(const QString& s) {
    return s.toStdString();
}

std::string LineAndColumn(std::string_view text, std::size_t offset) {
    int line = 1;
    std::size_t lineStart = 0;
    offset = std::min(offset, text.size());
    for (std::size_t i = 0; i < offset; ++i) {
        if (text[i] == '\n') {
            ++line;
            lineStart = i + 1;
        }
    }
    return "line " + std::to_string(line) + ", column " + std::to_string(offset - lineStart + 1) +
           " (offset " + std::to_string(offset) + ")";
}

// The text the strict reader did not take, read as before: Qt's parser gives the verdict on
// the syntax and its messages, the shape checks name what it glosses over.
bool ReadWithQt(std::string_view json, const std::string& sourceName, json::Tree& tree,
                LoadError& error) {
    QJsonParseError parseError;
    QJsonDocument doc = QJsonDocument::fromJson(
        QByteArray::fromRawData(json.data(), qsizetype(json.size())), &parseError);
    JsonShapeFault fault;
    if (parseError.error != QJsonParseError::NoError) {
        // The parser names a stray comma by what it expected next; say what it is.
        if (FindStrayComma(json, std::size_t(parseError.offset) + 1, fault))
            error = {sourceName, LineAndColumn(json, fault.offset), fault.message};
        else
            error = {sourceName, LineAndColumn(json, std::size_t(parseError.offset)),
                     Std(parseError.errorString())};
        return false;
    }
    // The parser keeps the last of two equal keys; which one was meant can't be known.
    if (FindDuplicateKey(json, fault)) {
        error = {sourceName, LineAndColumn(json, fault.offset), fault.message};
        return false;
    }
    if (!doc.isObject()) {
        error = {sourceName, "top level", "expected an object"};
        return false;
    }
    tree.CopyFrom(doc);
    return true;
}

} // namespace

std::string LoadError::ToString() const {
    std::string s = file;
    if (!place.empty())
        s += ": " + place;
    return s + ": " + message;
}

LoadResult ParseDeviceJson(std::string_view json, const std::string& sourceName) {
    LoadResult result;
    json::Tree tree;
    if (!tree.Read(json) && !ReadWithQt(json, sourceName, tree, result.error))
        return result;
    auto device = std::make_shared<DeviceDescription>();
    device->sourceFile = sourceName;
    // Texts take up a fraction of the file; reserving that much spares most regrowth.
    device->textPool.reserve(json.size() / 4);
    try {
        // A description holds a distinct text for about every 64 bytes.
        Loader(*device, json.size() / 64).Load(tree.Root());
    } catch (const Refusal& r) {
        result.error = {sourceName, r.place, r.message};
        return result;
    }
    if (LoadError overlap = CheckRegisterOverlaps(*device); !overlap.message.empty()) {
        result.error = std::move(overlap);
        return result;
    }
    device->textPool.shrink_to_fit();
    result.device = std::move(device);
    return result;
}

LoadResult LoadDeviceFile(const std::string& path) {
    std::string bytes, why;
    switch (files::ReadFileBounded(path, files::kMaxDeviceFileBytes, bytes, &why)) {
    case files::ReadOutcome::Ok:
        return ParseDeviceJson(bytes, path);
    case files::ReadOutcome::TooLarge:
        why += "; not a device description";
        break;
    case files::ReadOutcome::CannotRead:
        break;
    }
    LoadResult result;
    result.error = {path, "", why};
    return result;
}

std::string DefaultDeviceDirectory() {
    return layout::DevicesDir();
}

bool IsSameDeviceType(const std::uint8_t* a, std::size_t aSize, const std::uint8_t* b,
                      std::size_t bSize) {
    if (!a || !b || aSize < 16 || bSize < 16)
        return false;
    for (std::size_t offset : {0, 2, 4, 14}) {
        if (a[offset] != b[offset] || a[offset + 1] != b[offset + 1])
            return false;
    }
    return true;
}

bool DeviceLibrary::Add(const std::string& path, LoadError* error) {
    LoadResult result = LoadDeviceFile(path);
    if (!result) {
        if (error)
            *error = result.error;
        return false;
    }
    const ProductInfo& p = result.device->product;
    for (const auto& seen : devices_) {
        const ProductInfo& q = seen->product;
        if (p.lineId == q.lineId && p.productId == q.productId &&
            p.subProductId == q.subProductId) {
            if (error)
                *error = {path, "product",
                          "same line, product and sub-product as " + seen->sourceFile};
            return false;
        }
    }
    devices_.push_back(std::move(result.device));
    return true;
}

std::vector<LoadError> DeviceLibrary::AddDirectory(const std::string& dir) {
    std::vector<LoadError> errors;
    QDir d(QString::fromStdString(dir));
    const QStringList names = d.entryList({QStringLiteral("*.json")}, QDir::Files, QDir::Name);
    for (const QString& name : names) {
        LoadError error;
        if (!Add(Std(d.filePath(name)), &error))
            errors.push_back(std::move(error));
    }
    return errors;
}

std::shared_ptr<const DeviceDescription>
DeviceLibrary::FindByIds(std::uint32_t lineId, std::uint32_t productId,
                         std::uint32_t subProductId) const {
    for (const auto& d : devices_) {
        if (d->product.lineId == lineId && d->product.productId == productId &&
            d->product.subProductId == subProductId)
            return d;
    }
    return nullptr;
}

std::shared_ptr<const DeviceDescription> DeviceLibrary::FindByLabel(const std::uint8_t* label,
                                                                    std::size_t size) const {
    for (const auto& d : devices_) {
        const auto& own = d->product.electronicLabel;
        if (IsSameDeviceType(own.data(), own.size(), label, size))
            return d;
    }
    return nullptr;
}

} // namespace zorhost::device
