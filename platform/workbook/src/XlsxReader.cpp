// .xlsx: a zip of XML parts. The workbook part lists the sheets in order and names their
// parts through its relations; cells refer to the shared strings by index.
#include "workbook/Workbook.h"

#include <expat.h>
#include <minizip/unzip.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>

namespace workbook::detail {

namespace {

// No part of a recipe comes near this; a bigger one is a broken or hostile file.
constexpr unsigned long long kMaxPartBytes = 256ull << 20;

// minizip reads through these from the bytes in memory: the whole file is read once, and
// the zip directory's many small seeks and reads cost no system calls.
struct MemoryFile {
    std::string_view bytes;
    ZPOS64_T at = 0;
};

voidpf ZCALLBACK MemoryOpen(voidpf opaque, const void*, int mode) {
    if ((mode & ZLIB_FILEFUNC_MODE_READWRITEFILTER) != ZLIB_FILEFUNC_MODE_READ)
        return nullptr;
    static_cast<MemoryFile*>(opaque)->at = 0;
    return opaque;
}

uLong ZCALLBACK MemoryRead(voidpf, voidpf stream, void* buffer, uLong size) {
    auto* f = static_cast<MemoryFile*>(stream);
    const ZPOS64_T left = f->at < f->bytes.size() ? f->bytes.size() - f->at : 0;
    const uLong n = uLong(std::min<ZPOS64_T>(size, left));
    std::memcpy(buffer, f->bytes.data() + f->at, n);
    f->at += n;
    return n;
}

uLong ZCALLBACK MemoryWrite(voidpf, voidpf, const void*, uLong) {
    return 0;
}

ZPOS64_T ZCALLBACK MemoryTell(voidpf, voidpf stream) {
    return static_cast<MemoryFile*>(stream)->at;
}

long ZCALLBACK MemorySeek(voidpf, voidpf stream, ZPOS64_T offset, int origin) {
    auto* f = static_cast<MemoryFile*>(stream);
    ZPOS64_T base = 0;
    if (origin == ZLIB_FILEFUNC_SEEK_CUR)
        base = f->at;
    else if (origin == ZLIB_FILEFUNC_SEEK_END)
        base = f->bytes.size();
    else if (origin != ZLIB_FILEFUNC_SEEK_SET)
        return -1;
    if (offset > f->bytes.size() - base)
        return -1;
    f->at = base + offset;
    return 0;
}

int ZCALLBACK MemoryClose(voidpf, voidpf) {
    return 0;
}

int ZCALLBACK MemoryError(voidpf, voidpf) {
    return 0;
}

struct ZipCloser {
    void operator()(void* zip) const { unzClose(zip); }
};
using Zip = std::unique_ptr<void, ZipCloser>;

bool ReadPart(unzFile zip, const std::string& name, std::string& out) {
    out.clear();
    if (unzLocateFile(zip, name.c_str(), 2) != UNZ_OK)
        return false;
    unz_file_info64 info{};
    if (unzGetCurrentFileInfo64(zip, &info, nullptr, 0, nullptr, 0, nullptr, 0) != UNZ_OK ||
        info.uncompressed_size > kMaxPartBytes)
        return false;
    if (unzOpenCurrentFile(zip) != UNZ_OK)
        return false;
    char buffer[65536];
    int n = 0;
    while ((n = unzReadCurrentFile(zip, buffer, sizeof buffer)) > 0) {
        out.append(buffer, size_t(n));
        if (out.size() > kMaxPartBytes)
            break;
    }
    const int closed = unzCloseCurrentFile(zip); // reports a CRC mismatch
    return n == 0 && closed == UNZ_OK && out.size() <= kMaxPartBytes;
}

const char* LocalName(const char* name) {
    const char* colon = std::strrchr(name, ':');
    return colon ? colon + 1 : name;
}

const char* Attr(const char** attrs, const char* wanted) {
    for (int i = 0; attrs[i]; i += 2)
        if (std::strcmp(LocalName(attrs[i]), wanted) == 0)
            return attrs[i + 1];
    return nullptr;
}

// Runs expat over `xml` with a handler object that has Start, End and Text.
template <class Handler> bool Parse(const std::string& xml, Handler& handler) {
    XML_Parser parser = XML_ParserCreate("UTF-8");
    if (!parser)
        return false;
    XML_SetUserData(parser, &handler);
    XML_SetElementHandler(
        parser,
        [](void* self, const char* name, const char** attrs) {
            static_cast<Handler*>(self)->Start(LocalName(name), attrs);
        },
        [](void* self, const char* name) { static_cast<Handler*>(self)->End(LocalName(name)); });
    XML_SetCharacterDataHandler(parser, [](void* self, const char* s, int len) {
        static_cast<Handler*>(self)->Text(s, len);
    });
    const bool ok = XML_Parse(parser, xml.data(), int(xml.size()), 1) == XML_STATUS_OK;
    XML_ParserFree(parser);
    return ok;
}

struct SheetEntry {
    std::string name;
    std::string relationId;
    std::string part;
};

struct WorkbookHandler {
    std::vector<SheetEntry> sheets;
    void Start(const char* name, const char** attrs) {
        if (std::strcmp(name, "sheet") != 0)
            return;
        const char* n = Attr(attrs, "name");
        const char* id = Attr(attrs, "id");
        sheets.push_back({n ? n : "", id ? id : "", {}});
    }
    void End(const char*) {}
    void Text(const char*, int) {}
};

struct RelationsHandler {
    std::vector<std::pair<std::string, std::string>> targets;
    void Start(const char* name, const char** attrs) {
        if (std::strcmp(name, "Relationship") != 0)
            return;
        const char* id = Attr(attrs, "Id");
        const char* target = Attr(attrs, "Target");
        if (id && target)
            targets.emplace_back(id, target);
    }
    void End(const char*) {}
    void Text(const char*, int) {}
};

// Rich text comes in runs, each with a <t>; phonetic runs (<rPh>) are not part of it.
struct SharedStringsHandler {
    std::vector<std::string> strings;
    std::string current;
    int phonetic = 0;
    bool inText = false;
    void Start(const char* name, const char**) {
        if (std::strcmp(name, "si") == 0)
            current.clear();
        else if (std::strcmp(name, "rPh") == 0)
            ++phonetic;
        else if (std::strcmp(name, "t") == 0)
            inText = phonetic == 0;
    }
    void End(const char* name) {
        if (std::strcmp(name, "si") == 0)
            strings.push_back(current);
        else if (std::strcmp(name, "rPh") == 0)
            --phonetic;
        else if (std::strcmp(name, "t") == 0)
            inText = false;
    }
    void Text(const char* s, int len) {
        if (inText)
            current.append(s, size_t(len));
    }
};

struct SheetHandler {
    SheetHandler(const std::vector<std::string>& s, Sheet& out) : shared(s), sheet(out) {}
    const std::vector<std::string>& shared;
    Sheet& sheet;
    int row = 0;
    int column = 0;
    std::string type;
    std::string value;
    bool inValue = false;
    bool inCell = false;

    void Start(const char* name, const char** attrs) {
        if (std::strcmp(name, "row") == 0) {
            const char* r = Attr(attrs, "r");
            row = r ? std::atoi(r) : row + 1;
            column = 0;
        } else if (std::strcmp(name, "c") == 0) {
            inCell = true;
            const char* r = Attr(attrs, "r");
            const char* t = Attr(attrs, "t");
            type = t ? t : "n";
            value.clear();
            if (r) {
                const char* cursor = r;
                column = ColumnFromLetters(cursor);
                if (*cursor)
                    row = std::atoi(cursor);
            } else {
                ++column;
            }
        } else if (inCell && (std::strcmp(name, "v") == 0 || std::strcmp(name, "t") == 0)) {
            inValue = true;
        }
    }
    void End(const char* name) {
        if (std::strcmp(name, "v") == 0 || std::strcmp(name, "t") == 0) {
            inValue = false;
        } else if (std::strcmp(name, "c") == 0) {
            inCell = false;
            Cell cell;
            if (type == "s") {
                const long index = std::strtol(value.c_str(), nullptr, 10);
                if (!value.empty() && index >= 0 && size_t(index) < shared.size()) {
                    cell.kind = Cell::Kind::Text;
                    cell.text = shared[size_t(index)];
                }
            } else if (type == "str" || type == "inlineStr" || type == "e") {
                cell.kind = Cell::Kind::Text;
                cell.text = value;
            } else if (!value.empty()) {
                cell.kind = Cell::Kind::Number;
                cell.number = std::strtod(value.c_str(), nullptr);
            }
            sheet.Set(row, column, std::move(cell));
        }
    }
    void Text(const char* s, int len) {
        if (inValue)
            value.append(s, size_t(len));
    }
};

// A relation's target is relative to xl/ unless it starts at the root.
std::string PartName(const std::string& target) {
    if (!target.empty() && target[0] == '/')
        return target.substr(1);
    return "xl/" + target;
}

} // namespace

bool ReadXlsx(std::string_view bytes, std::vector<Sheet>& sheets) {
    MemoryFile file{bytes};
    zlib_filefunc64_def io{MemoryOpen, MemoryRead,  MemoryWrite, MemoryTell,
                           MemorySeek, MemoryClose, MemoryError, &file};
    Zip zip(unzOpen2_64("", &io));
    if (!zip)
        return false;
    std::string xml;
    WorkbookHandler book;
    RelationsHandler relations;
    if (!ReadPart(zip.get(), "xl/workbook.xml", xml) || !Parse(xml, book) ||
        !ReadPart(zip.get(), "xl/_rels/workbook.xml.rels", xml) || !Parse(xml, relations))
        return false;
    SharedStringsHandler strings;
    // A workbook without texts has no shared strings part.
    if (ReadPart(zip.get(), "xl/sharedStrings.xml", xml) && !Parse(xml, strings))
        return false;
    for (SheetEntry& entry : book.sheets) {
        for (const auto& [id, target] : relations.targets)
            if (id == entry.relationId)
                entry.part = PartName(target);
        Sheet sheet(entry.name);
        SheetHandler handler{strings.strings, sheet};
        if (entry.part.empty() || !ReadPart(zip.get(), entry.part, xml) || !Parse(xml, handler))
            return false;
        sheets.push_back(std::move(sheet));
    }
    return true;
}

} // namespace workbook::detail
