#include "StandardTexts.h"

#include <cstring>

namespace zordrivebench {

namespace {

struct Entry {
    const char* context;
    const char* source;
    const char* chinese;
};

// Mnemonics stay reachable: "是(&Y)" as Chinese programs write them.
const Entry kTexts[] = {
    {"QPlatformTheme", "OK", "确定"},
    {"QPlatformTheme", "Cancel", "取消"},
    {"QPlatformTheme", "&Yes", "是(&Y)"},
    {"QPlatformTheme", "&No", "否(&N)"},
    {"QPlatformTheme", "Yes to &All", "全是(&A)"},
    {"QPlatformTheme", "N&o to All", "全否(&O)"},
    {"QPlatformTheme", "Abort", "中止"},
    {"QPlatformTheme", "Retry", "重试"},
    {"QPlatformTheme", "Ignore", "忽略"},
    {"QPlatformTheme", "Close", "关闭"},
    {"QPlatformTheme", "Save", "保存"},
    {"QPlatformTheme", "Open", "打开"},
    {"QPlatformTheme", "Apply", "应用"},
    {"QPlatformTheme", "Help", "帮助"},
    {"QPlatformTheme", "Discard", "放弃"},
    {"QFileDialog", "Look in:", "查找范围:"},
    {"QFileDialog", "File &name:", "文件名(&N):"},
    {"QFileDialog", "Files of type:", "文件类型:"},
    {"QFileDialog", "&Open", "打开(&O)"},
    {"QFileDialog", "&Save", "保存(&S)"},
    {"QFileDialog", "&Choose", "选择(&C)"},
    {"QFileDialog", "Cancel", "取消"},
    {"QFileDialog", "Open", "打开"},
    {"QFileDialog", "Save As", "另存为"},
    {"QFileDialog", "All Files (*)", "所有文件 (*)"},
};

} // namespace

QString ChineseStandardTexts::translate(const char* context, const char* sourceText,
                                        const char* /*disambiguation*/, int /*n*/) const {
    if (context == nullptr || sourceText == nullptr)
        return QString();
    for (const Entry& e : kTexts)
        if (std::strcmp(e.context, context) == 0 && std::strcmp(e.source, sourceText) == 0)
            return QString::fromUtf8(e.chinese);
    return QString(); // not ours: Qt keeps its own text
}

} // namespace zordrivebench
