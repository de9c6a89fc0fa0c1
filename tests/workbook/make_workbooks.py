#!/usr/bin/python3
"""Writes the recipe workbooks the reader is tested on, with real spreadsheet writers
(openpyxl for .xlsx, xlwt for .xls), so that no code of ours made the files it reads.

    /usr/bin/python3 make_workbooks.py OUTDIR
"""
import os
import sys

import openpyxl
import xlwt

# (sheet name, {cell: value}); numbers stay numbers, texts stay texts.
SHEETS = [
    # A change log is skipped even when it looks like a matrix sheet.
    ("修改记录", {"B1": "QX800逆变", "A6": "x", "G6": "1", "C7": "0x10", "D7": "5",
                 "E7": "无符号16位", "G7": "是"}),
    # Matrix: modules 1 and 3 in G and H, I without a title.
    ("矩阵", {
        "B1": "QX800逆变 配方",
        "G6": "1", "H6": 3, "I6": None,
        # "是" in two module columns: one record for each module.
        "C7": "0x1A", "D7": "12.5", "E7": "单精度浮点数", "G7": "是", "H7": "是",
        # a number cell as the address; only module 3.
        "C8": 26, "D8": 7, "E8": "无符号16位", "H8": "  是的 ",
        # "是" under a column without a title goes nowhere.
        "C9": "0x20", "D9": "abc", "E9": "有符号32位", "G9": "否", "I9": "是",
    }),
    # Single sheet for module 2; the row without an address makes no record.
    ("单轴", {
        "B1": "单轴配方", "B3": " 2 ",
        "C7": " 0x1a ", "D7": " 3.25 ", "E7": "有符号16位",
        "D8": "99", "E8": "有符号16位",
        "C9": 40, "D9": "-4x", "E9": "布尔型(0/1)",
    }),
    # B1 empty: the sheet contributes nothing whatever it holds.
    ("空", {"B3": "2", "C7": "0x30", "D7": "1", "E7": "无符号16位"}),
]


def cell_index(ref):
    letters = "".join(ch for ch in ref if ch.isalpha())
    row = int("".join(ch for ch in ref if ch.isdigit()))
    col = 0
    for ch in letters:
        col = col * 26 + ord(ch) - ord("A") + 1
    return row, col


def write_xlsx(path, sheets):
    book = openpyxl.Workbook()
    book.remove(book.active)
    for name, cells in sheets:
        sheet = book.create_sheet(name)
        for ref, value in cells.items():
            if value is not None:
                sheet[ref] = value
    book.save(path)


def write_xls(path, sheets):
    book = xlwt.Workbook(encoding="utf-8")
    for name, cells in sheets:
        sheet = book.add_sheet(name)
        for ref, value in cells.items():
            if value is not None:
                row, col = cell_index(ref)
                sheet.write(row - 1, col - 1, value)
    book.save(path)


def write_large(path, rows):
    book = openpyxl.Workbook()
    sheet = book.active
    sheet.title = "配方"
    sheet["B1"] = "大配方"
    sheet["B3"] = "1"
    for i in range(rows):
        r = 7 + i
        sheet.cell(row=r, column=1, value=i)
        sheet.cell(row=r, column=2, value="H%02d-%02d" % (i // 100, i % 100))
        sheet.cell(row=r, column=3, value="0x%04X" % (0x1000 + i))
        sheet.cell(row=r, column=4, value=str(i * 0.5))
        sheet.cell(row=r, column=5, value="无符号16位")
    book.save(path)


def main():
    out = sys.argv[1] if len(sys.argv) > 1 else os.path.join(os.path.dirname(__file__), "data")
    os.makedirs(out, exist_ok=True)
    write_xlsx(os.path.join(out, "recipe.xlsx"), SHEETS)
    write_xls(os.path.join(out, "recipe.xls"), SHEETS)
    write_large(os.path.join(out, "recipe_5000.xlsx"), 5000)
    # Broken files: a zip cut in half and a compound document of noise.
    with open(os.path.join(out, "recipe.xlsx"), "rb") as f:
        whole = f.read()
    with open(os.path.join(out, "corrupt.xlsx"), "wb") as f:
        f.write(whole[: len(whole) // 2])
    with open(os.path.join(out, "corrupt.xls"), "wb") as f:
        f.write(b"\xd0\xcf\x11\xe0\xa1\xb1\x1a\xe1" + bytes(range(256)) * 8)


if __name__ == "__main__":
    main()
