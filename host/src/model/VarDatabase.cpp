#include "zorhost/model/VarDatabase.h"

#include "zorhost/files/BoundedRead.h"
#include "zorhost/model/VarStore.h"

#include <afx/afxfile.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <memory>

namespace zorhost::model {

namespace {

QString Q(const CString& s) {
    return QString::fromUtf8(s.str().data(), qsizetype(s.str().size()));
}

CString C(const QJsonValue& v) {
    return CString(v.toString().toStdString());
}

QJsonArray MembersOf(IGroupNode* g) {
    QJsonArray members;
    for (int i = 0; i < g->GetMemberCount(); ++i) {
        CString key;
        if (g->GetMemberAt(i, key))
            members.append(Q(key));
    }
    return members;
}

QJsonObject GroupJson(IGroupNode* g) {
    CString name, description;
    g->GetName(name);
    g->GetDescription(description);
    QJsonObject o;
    o["name"] = Q(name);
    o["description"] = Q(description);
    o["access"] = g->GetAccessLevel();
    o["visible"] = g->IsGroupVisible() != 0;
    o["fixed"] = g->IsGroupFixed() != 0;
    o["members"] = MembersOf(g);
    QJsonArray children;
    for (int i = 0; i < g->GetChildCount(); ++i)
        if (IGroupNode* c = g->GetChildAt(i))
            children.append(GroupJson(c));
    o["children"] = children;
    return o;
}

std::unique_ptr<CGroupNode> GroupFrom(const QJsonObject& o, int depth) {
    if (depth > 64 || !o["name"].isString())
        return nullptr;
    auto g = std::make_unique<CGroupNode>(C(o["name"]));
    g->SetDescription(C(o["description"]));
    g->SetAccessLevel(o["access"].toInt(0));
    g->SetFlags(o["visible"].toBool(true), o["fixed"].toBool(false));
    for (const QJsonValueRef m : o["members"].toArray())
        g->AddMember(C(m));
    for (const QJsonValueRef c : o["children"].toArray()) {
        std::unique_ptr<CGroupNode> child = GroupFrom(c.toObject(), depth + 1);
        if (!child || !g->AddChild(child.get()))
            return nullptr;
        (void)child.release(); // the parent has it
    }
    return g;
}

} // namespace

BOOL CVarDatabase::SaveToFile(const CString& path) {
    CGroupSet& set = m_store.CustomGroups();
    QJsonObject root;
    root["format"] = 1;
    CString version;
    m_store.GetVersionText(version);
    root["version"] = Q(version);
    QJsonArray members;
    for (int i = 0; i < set.GetMemberCount(); ++i) {
        CString key;
        if (set.GetMemberAt(i, key))
            members.append(Q(key));
    }
    root["members"] = members;
    QJsonArray groups;
    for (int i = 0; i < set.GetCount(); ++i)
        groups.append(GroupJson(set.GetAt(i)));
    root["groups"] = groups;

    const QByteArray bytes = QJsonDocument(root).toJson(QJsonDocument::Indented);
    return AfxReplaceFile(path.str(), std::string_view(bytes.constData(), size_t(bytes.size())))
               ? 1
               : 0;
}

bool CVarDatabase::LoadFromFile(const CString& path, std::string* error) {
    std::string bytes, why;
    // Groups are short lists of keys; anything near the ceiling is not a store of ours.
    switch (files::ReadFileBounded(path.str(), files::kMaxGroupFileBytes, bytes, &why)) {
    case files::ReadOutcome::Ok:
        return LoadFromBytes(bytes, path.str(), error);
    case files::ReadOutcome::TooLarge:
        break;
    case files::ReadOutcome::CannotRead:
        why = "cannot be opened: " + why;
        break;
    }
    if (error)
        *error = path.str() + ": " + why;
    return false;
}

bool CVarDatabase::LoadFromBytes(const std::string& bytes, const std::string& sourceName,
                                 std::string* error) {
    auto fail = [&](const std::string& why) {
        if (error)
            *error = sourceName + ": " + why;
        return false;
    };
    QJsonParseError parseError;
    QJsonDocument doc = QJsonDocument::fromJson(
        QByteArray::fromRawData(bytes.data(), qsizetype(bytes.size())), &parseError);
    if (doc.isNull())
        return fail("at byte " + std::to_string(parseError.offset) + ": " +
                    parseError.errorString().toStdString());
    QJsonObject root = doc.object();
    if (root["format"].toInt() != 1)
        return fail("unknown format");
    // Build everything first, so a broken file leaves the groups as they were.
    std::vector<std::unique_ptr<CGroupNode>> groups;
    for (const QJsonValueRef g : root["groups"].toArray()) {
        std::unique_ptr<CGroupNode> group = GroupFrom(g.toObject(), 0);
        if (!group)
            return fail("group " + std::to_string(groups.size()) + ": has no name");
        groups.push_back(std::move(group));
    }
    CGroupSet& set = m_store.CustomGroups();
    while (set.GetCount() > 0)
        set.RemoveGroup(set.GetAt(0), 0);
    while (set.GetMemberCount() > 0) {
        CString key;
        set.GetMemberAt(0, key);
        set.RemoveMember(key);
    }
    for (const QJsonValueRef m : root["members"].toArray())
        set.AddMember(C(m));
    for (auto& g : groups)
        if (set.AddGroup(g.get()))
            (void)g.release(); // the set has it
    return true;
}

} // namespace zorhost::model
