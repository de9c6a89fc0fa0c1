#include "zorhost/device/DeviceLoader.h"
#include "JsonTree.h"
#include "Loader.h"
#include "zorhost/InstallLayout.h"
#include "zorhost/device/DeviceChecks.h"
#include "zorhost/device/JsonShape.h"
#include "zorhost/files/BoundedRead.h"

#include <QByteArray>
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

} // namespace zorhost::device
