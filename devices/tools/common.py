"""Helpers shared by the scripts that write the shipped device descriptions.

The JSON files are the product; these scripts only keep the repetitive parts (DI terminals,
segments, notch filters) consistent. Run `python3 devices/tools/make_devices.py`.
"""

import json


def opt(value, text, en):
    return {"value": value, "text": text, "textEn": en}


def enum(*items):
    return {"enum": [opt(v, t, e) for v, t, e in items]}


def bits(*items):
    return {"bits": [{"bit": b, "text": t, "textEn": e} for b, t, e in items]}


class Group:
    """Collects the parameters of one function-code group; index numbers run on by default."""

    def __init__(self, number, description, en, access=0, visible=True, fixed=False):
        self.number = number
        self.name = "H%02X" % number
        self.description = description
        self.en = en
        self.access = access
        self.visible = visible
        self.fixed = fixed
        self.params = []
        self.next = 0
        self.members = None  # None: "*", all codes of the group

    def p(self, name, en, type="u16", index=None, **kw):
        if index is None:
            index = self.next
        # A 32- or 64-bit value takes two or four 16-bit registers; the next code follows them.
        self.next = index + {"i32": 2, "u32": 2, "f32": 2, "f64": 4}.get(type, 1)
        code = "%s-%02d" % (self.name, index)
        entry = {"code": code, "name": name, "nameEn": en}
        entry["address"] = "0x%04X" % (self.number * 256 + index)
        entry["type"] = type
        renames = {"fac": "factory", "dec": "decimals"}
        for key, value in kw.items():
            entry[renames.get(key, key)] = value
        self.params.append(entry)
        return code

    def set(self, code, **kw):
        """Adds fields to a parameter already made, for limits that follow each other."""
        for p in self.params:
            if p["code"] == code:
                p.update(kw)
                return
        raise KeyError(code)

    def code_of(self, name):
        """The code of the parameter called name, so tables never repeat a number by hand."""
        for p in self.params:
            if p["name"] == name:
                return p["code"]
        raise KeyError(name)

    def group_json(self, children=None):
        g = {"name": self.name, "description": self.description, "descriptionEn": self.en}
        if self.access:
            g["access"] = self.access
        if not self.visible:
            g["visible"] = False
        if self.fixed:
            g["fixed"] = True
        g["members"] = self.members if self.members is not None else "*"
        if children:
            g["children"] = children
        return g


def dump(path, doc):
    """One parameter, group member list or option per line: readable and diffable."""
    out = ["{"]
    keys = list(doc.keys())
    for i, key in enumerate(keys):
        value = doc[key]
        comma = "," if i + 1 < len(keys) else ""
        head = "  " + json.dumps(key) + ": "
        if isinstance(value, list) and value and isinstance(value[0], dict):
            out.append(head + "[")
            for k, item in enumerate(value):
                c = "," if k + 1 < len(value) else ""
                out.append("    " + json.dumps(item, ensure_ascii=False) + c)
            out.append("  ]" + comma)
        elif isinstance(value, dict) and key == "valueInfos":
            out.append(head + "{")
            names = list(value.keys())
            for k, name in enumerate(names):
                c = "," if k + 1 < len(names) else ""
                out.append("    " + json.dumps(name) + ": " +
                           json.dumps(value[name], ensure_ascii=False) + c)
            out.append("  }" + comma)
        else:
            out.append(head + json.dumps(value, ensure_ascii=False) + comma)
    out.append("}")
    with open(path, "w", encoding="utf-8") as f:
        f.write("\n".join(out) + "\n")
