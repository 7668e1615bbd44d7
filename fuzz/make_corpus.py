#!/usr/bin/env python3
"""Writes the seeds of the fuzz programs to corpus/, one folder for each. They lie in the tree; run this after a change
of what an input means (support/input.h, support/command.cpp)."""

import os
import shutil
import sqlite3
import struct
import tempfile

CORPUS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "corpus")

HR, FN6HR, IR, DI, DO, FN5DO, SW = range(7)
BIT, BYTE, WORD, DWORD, EIGHT_BYTES, BLOCK, SECOND_BIT = range(7)
GOOD, FLIPPED_BIT, CUT_SHORT, FOREIGN, FOREIGN_WITH_CRC, EXCEPTION, ODD_SEND, ODD_READ = range(8)
NO_SUFFIX, HIGH_WORD_FIRST = 0, 1


def write(target, name, data):
    folder = os.path.join(CORPUS, target)
    os.makedirs(folder, exist_ok=True)
    with open(os.path.join(folder, name), "wb") as seed:
        seed.write(data)


def bit(number):
    return 2 + number


def command(kind, area, number, suffix, count):
    return struct.pack(">BBHBB", kind, area, number, suffix, count)


def link(station=0, retries=0):
    return bytes([station, retries + 1])


def reads():
    data = bytes(range(0x10, 0x30))
    for name, kind, area, number, suffix, count in [
        ("words", WORD, HR, 100, NO_SUFFIX, 5),
        ("input_words", WORD, IR, 65535, NO_SUFFIX, 2),
        ("too_many_words", WORD, HR, 1, NO_SUFFIX, 126),
        ("double_words", DWORD, FN6HR, 7, NO_SUFFIX, 3),
        ("double_words_high_first", DWORD, HR, 7, HIGH_WORD_FIRST, 3),
        ("bytes", BYTE, HR, 1, NO_SUFFIX, 5),
        ("block", BLOCK, IR, 1, NO_SUFFIX, 6),
        ("register_bits", BIT, HR, 1, bit(14), 3),
        ("register_bits_far", SECOND_BIT, HR, 3, bit(200), 30),
        ("coils", BIT, DO, 1, NO_SUFFIX, 19),
        ("inputs", BIT, DI, 65535, NO_SUFFIX, 2),
        ("eight_bytes", EIGHT_BYTES, HR, 1, NO_SUFFIX, 1),
    ]:
        write("read_replies", name, command(kind, area, number, suffix, count) + link() + bytes([GOOD]) + data)
    used_inputs = command(BYTE, DI, 1, NO_SUFFIX, 3) + link()
    write("read_replies", "used_inputs", used_inputs + bytes([GOOD, 0x05, GOOD, 0x01, GOOD, 0x01]))
    write("read_replies", "used_inputs_second_fails", used_inputs + bytes([GOOD, 0x05, CUT_SHORT, 0x01, 4]))
    write("read_replies", "used_coils_wrap", command(BYTE, DO, 65530, NO_SUFFIX, 10) + link() + bytes([GOOD, 1]))
    write("read_replies", "used_run_too_long", command(BLOCK, DO, 1, NO_SUFFIX, 0xEF) + link(station=2))
    write("read_replies", "unknown_station", command(BYTE, DI, 1, NO_SUFFIX, 1) + link(station=4))
    for fault, tail in FAULTS.items():
        write("read_replies", f"fault_{fault}",
              command(WORD, HR, 1, NO_SUFFIX, 2) + link(retries=1) + tail(b"\x11\x22\x33\x44"))


FAULTS = {
    "flipped_bit": lambda data: bytes([FLIPPED_BIT]) + data + struct.pack(">H", 41) + bytes([GOOD]) + data,
    "station": lambda data: bytes([FLIPPED_BIT]) + data + struct.pack(">H", 1),
    "function": lambda data: bytes([FLIPPED_BIT]) + data + struct.pack(">H", 9),
    "cut_first_stage": lambda data: bytes([CUT_SHORT]) + data + bytes([3, GOOD]) + data,
    "cut_rest": lambda data: bytes([CUT_SHORT]) + data + bytes([7, GOOD]) + data,
    "silence": lambda data: bytes([CUT_SHORT]) + data + bytes([0, CUT_SHORT]) + data + bytes([0]),
    "foreign": lambda data: bytes([FOREIGN]) + data + bytes([9]) + b"welcome\r\n",
    "foreign_with_crc": lambda data: bytes([FOREIGN_WITH_CRC]) + data + bytes([5]) + b"\x01\x03\x02\x12\x34",
    "exception": lambda data: bytes([EXCEPTION]) + data + bytes([2, EXCEPTION]) + data + bytes([11]),
    "short_send": lambda data: bytes([ODD_SEND, 0xFF, GOOD]) + data,
    "odd_read": lambda data: bytes([ODD_READ]) + data + bytes([0, 1, GOOD]) + data,
    "reply_left_over": lambda data: bytes([FOREIGN]) + data + bytes([16]) + 2 * b"\x01\x03\x02\x12\x34\xB5\x33\x00",
}


def writes():
    data = bytes(range(0x81, 0x91))
    for name, kind, area, number, suffix, count in [
        ("words", WORD, HR, 100, NO_SUFFIX, 5),
        ("words_one_by_one", WORD, FN6HR, 100, NO_SUFFIX, 3),
        ("double_words", DWORD, HR, 1, NO_SUFFIX, 2),
        ("double_words_high_first", DWORD, FN6HR, 1, HIGH_WORD_FIRST, 2),
        ("bytes", BYTE, HR, 11, NO_SUFFIX, 3),
        ("bytes_one_by_one", BLOCK, FN6HR, 11, NO_SUFFIX, 5),
        ("coils", BIT, DO, 65531, NO_SUFFIX, 6),
        ("coils_one_by_one", BIT, FN5DO, 8, NO_SUFFIX, 3),
        ("register_bits", BIT, HR, 21, bit(15), 2),
        ("register_bits_one_by_one", SECOND_BIT, FN6HR, 21, bit(0), 16),
        ("inputs", BIT, DI, 1, NO_SUFFIX, 1),
        ("input_registers", WORD, IR, 1, NO_SUFFIX, 1),
        ("too_many_words", WORD, HR, 1, NO_SUFFIX, 124),
        ("too_many_coils", BIT, DO, 0, NO_SUFFIX, 2),
        ("eight_bytes", EIGHT_BYTES, HR, 1, NO_SUFFIX, 1),
    ]:
        head = command(kind, area, number, suffix, count) + bytes([len(data)]) + data
        write("write_replies", name, head + link() + bytes(16))
    for fault, tail in FAULTS.items():
        head = command(WORD, HR, 1, NO_SUFFIX, 1) + b"\x02\x12\x34"
        write("write_replies", f"fault_{fault}", head + link(retries=1) + tail(b""))


def texts():
    for i, address in enumerate(["HR100", "fn5do12", "HR7.3", "HR7.", "HR", "HR.2", "1-HR100", "FN6HR65536", "SW10", "hr10sw",
                                 "F", "FN", "FN5", "DI0", "HR4294967296", "IR1.300", "", "D\u00d61", "HR\u0661", "\u20acHR1"]):
        write("address_text", f"{i:02}", bytes([i % 7, 3]) + address.encode())
    for name, tags in {
        "default_station": ["DI1", "di3", "DO10", "FN5DO7", "DO65536", "DI0"],
        "other_stations": ["2-DO5", "2-fn5do5", "12-DI100", "300-DI1", "1-DO5.3"],
        "skipped": ["HR1", "1-HR4", "IR7.2", "", "-DI1", "2-", "2-DX1"],
        "odd_numbers": ["DI", "DI12.3", "DO 7", "DI99999999999", "99999999999-DI1", "1-DI99999999999", "DI-5", "DI0x10"],
        "long_numbers": ["4294967298-DI1", "1-DI4294967298", "DI4294967298", "999999999-DO999999999", "0000000002-DI0000000002",
                         "DO0000000003", "9999999999-DI1", "2147483648-DI2147483648"],
        "odd_digits": ["\u0661-DI1", "1-DI\u0661", "DI\u0661", "\uff11-DO2"],
    }.items():
        write("tag_text", name, "\n".join(tags).encode())


SCHEMA = """
    CREATE TABLE LINK (LINKID INTEGER, HMIPORT INTEGER);
    CREATE TABLE NODE (LINKID INTEGER, STATIONID INTEGER, ISDEFAULT INTEGER, IP TEXT, PORT INTEGER);
    CREATE TABLE custom_tag_table (address TEXT, connector_id INTEGER);
    INSERT INTO LINK VALUES (7, 1000);
    INSERT INTO NODE VALUES (7, 1, 1, '127.0.0.1', 502);
    INSERT INTO custom_tag_table VALUES ('DI1', 7), ('2-DO5', 7), ('HR1', 7);
"""

DATABASES = {
    "good": SCHEMA,
    "no_tables": "CREATE TABLE other (x);",
    "no_tags": SCHEMA + "DROP TABLE custom_tag_table;",
    "other_port": SCHEMA + "UPDATE LINK SET HMIPORT = 1001;",
    "no_default": SCHEMA + "UPDATE NODE SET ISDEFAULT = 0;",
    "missing_column": SCHEMA + "ALTER TABLE NODE RENAME COLUMN STATIONID TO OTHER;",
    "nulls": SCHEMA + "UPDATE NODE SET STATIONID = NULL; UPDATE custom_tag_table SET address = NULL;",
    "wrong_types": SCHEMA + "UPDATE LINK SET LINKID = 7.5; UPDATE NODE SET STATIONID = 'x', LINKID = 7.5;"
                            "UPDATE custom_tag_table SET address = x'00ff44', connector_id = 7;",
    "numbers_as_tags": SCHEMA + "INSERT INTO custom_tag_table VALUES (1, 7), (1.5e300, 7);",
    "long_tag": SCHEMA + "INSERT INTO custom_tag_table VALUES ('DI' || hex(zeroblob(900)), 7);",
    "many_tags": SCHEMA + "INSERT INTO custom_tag_table SELECT 'DI' || value, 7 FROM (WITH RECURSIVE n(value) AS"
                          " (SELECT 1 UNION ALL SELECT value + 1 FROM n WHERE value < 60) SELECT value FROM n);",
    "views": SCHEMA + "ALTER TABLE LINK RENAME TO L; CREATE VIEW LINK AS SELECT * FROM L;",
    "indexed": SCHEMA + "CREATE INDEX i ON custom_tag_table (connector_id); CREATE INDEX p ON LINK (HMIPORT);",
    "without_rowid": "CREATE TABLE LINK (LINKID INTEGER PRIMARY KEY, HMIPORT INTEGER) WITHOUT ROWID;"
                     + SCHEMA.replace("CREATE TABLE LINK (LINKID INTEGER, HMIPORT INTEGER);", ""),
    "utf16": "PRAGMA encoding = 'UTF-16';" + SCHEMA,
    "autovacuum": "PRAGMA auto_vacuum = FULL;" + SCHEMA,
}


def databases():
    with tempfile.TemporaryDirectory() as folder:
        for name, script in DATABASES.items():
            path = os.path.join(folder, name)
            connection = sqlite3.connect(path)
            connection.executescript("PRAGMA page_size = 512;" + script)
            connection.close()
            with open(path, "rb") as file:
                bytes_of_file = file.read()
            write("project_database", name, bytes_of_file)
            if name == "good":
                write("project_database", "cut", bytes_of_file[:-512])
                write("project_database", "header_only", bytes_of_file[:100])
                write("project_database", "write_ahead", bytes_of_file[:18] + b"\x02\x02" + bytes_of_file[20:])
    write("project_database", "empty", b"")
    write("project_database", "text", b"SQLite format 3")


def text_in_stream(text, order):
    encoded = text.encode("utf-16-be" if order == ">" else "utf-16-le")
    return struct.pack(order + "I", len(encoded)) + encoded


def streams():
    for name, order, first in [("big_endian", ">", 0), ("little_endian", "<", 1)]:
        write("driver_setting_stream", name, bytes([first]) + struct.pack(order + "4i", 3000, 3, 1, 0))
        record = struct.pack(order + "i", 16) + text_in_stream("COM2", order)
        record += struct.pack(order + "7i", 9600, 8, 0, 2, 0, 7, 1)
        sockets = struct.pack(order + "I", 2)
        for ip, port in [("10.0.0.5", 502), ("10.0.0.6", 503)]:
            sockets += text_in_stream(ip, order) + struct.pack(order + "H", port)
        for sockets_before in range(3):
            head = bytes([first, sockets_before, 0xFF])
            write("device_setting_stream", f"{name}_{sockets_before}", head + record + sockets)
        write("device_setting_stream", f"{name}_cut", bytes([first, 2, 0]) + record + sockets[:-9])
        write("device_setting_stream", f"{name}_null_text",
              bytes([first, 0, 0]) + struct.pack(order + "i", 16) + b"\xff" * 4 + record[16:])


def tools():
    values = bytes(range(1, 25))
    for i, text in enumerate(["nN", "Cv", "3x2X", "2n", "2x", "q", "0C", "nxV", "csCSv", "iIlLV", "3V2N", "12c", "1", "0x0X",
                              "99999999999c", "4294967297v", "2147483647q", "c2147483647x", "X", "nn-n", ""]):
        write("format_pack", f"{i:02}", bytes([len(text)]) + text.encode() + values)
    sizes = lambda *entries: bytes([8, len(entries)]) + struct.pack(f"{len(entries)}b", *entries)
    data = lambda content: bytes([6, len(content)]) + content
    number = lambda value: b"\x00" + struct.pack(">I", value)
    for name, steps in {
        "numbers": number(0x0100) + number(0x020301) + number(0x0A0B0C02) + number(0x0F0B),
        "checks": b"\x01\x03\x01\x02\xff" + b"\x03\x04\x05\x05",
        "text": b"\x02\x04ABCD" + b"\x07\x03xyz\x02" + b"\x09",
        "length_in_section": sizes(1, 1, -1) + data(b"\x01\x03ABC"),
        "chain": data(b"\x00\x02\x02\x01abc") + sizes(1, 1, -1, -2),
        "circle": data(b"\x01\x02\x03") + sizes(1, -2, -1),
        "itself": data(b"\x01\x02\x03") + sizes(1, -1, -7),
        "large": bytes([8, 2]) + b"\x80\x7f\xff\xff\xff\x80\x7f\xff\xff\xff",
    }.items():
        write("tx_package", name, steps)


def frame(hexadecimal):
    content = bytes.fromhex(hexadecimal)
    crc = 0xFFFF
    for byte in content:
        crc ^= byte
        for _ in range(8):
            crc = crc >> 1 ^ (0xA001 if crc & 1 else 0)
    return content + struct.pack("<H", crc)


def streams_of_the_desk():
    read, write_all = frame("01 03 00 00 00 02"), frame("01 10 00 00 00 02 04 11 22 33 44")
    reply = frame("01 03 04 11 22 33 44")
    for name, stream in {"requests": read + write_all, "noise": b"\x00\xff" + read + b"HELLO\r\n" + write_all,
                         "cut": read[:5] + read + write_all[:-3], "nested": write_all[:4] + read + read}.items():
        write("slave_deframer", name, b"\x03\x00\x02\x05" + stream)
    told = lambda kind, content: bytes([kind, len(content) - 1]) + content
    write("trace_lines", "read", told(0, read) + told(1, reply[:5]) + told(1, reply[5:]))
    write("trace_lines", "refused", told(0, read) + told(3, b"HELLO") + told(1, reply[:5]) + b"\x04" + told(2, reply[5:]))


def files_of_the_desk():
    write("project_list", "links", b"# a panel\nlink 1 ETHERNET\nnode 1 5 default 10.0.0.5:502\nnode 1 6\ntag 1 HR100\n"
          b"tag 1, 2-DO5\nlink 2 COM2\n")
    write("project_list", "errors", b"link\nnode 1 300\ntag 9 HR1\nstation 4\n")
    write("point_file", "commas", b"name,address,type,order,scale,offset,unit,low,high,states,comment\n"
          b"pump,HR1:f32@CDAB,,,0.1,-40,C,0,100,,\"a, b\"\nlevel,2-IR5,u16,,,,,,,0=stopped;1=running,\n")
    write("point_file", "semicolons", b"\xef\xbb\xbfaddress;name;states\r\nHR7.3;door;0:open;\r\nDI1:bitx8;doors;\r\n")
    write("point_file", "errors", b"name\taddress\ttype\nx\tHR0\tf99\n\"open\tHR1\n")
    write("snapshot_file", "kept", b"driverhost snapshot\nformat 1\ntime 2026-11-21T10:15:00.123+01:00\n"
          b"target rtutcp://192.168.0.10:502/1\nrange 1-HR1..4\nHR1 4660\nHR2 0\nHR3..4 missing\nrange 1-DO1..2\nDO1 1\nDO2 0\n")
    write("learnt_file", "format", b"driverhost learnt\nformat 1\nstation 5 no-fill\n"
          b"station 5 registers cost 52916.7 2291.7\nstation 5 registers limit 100 102\n"
          b"refused 5-HR101..120 exception 2 again 2026-05-01T10:00:00Z pause 60\n"
          b"refused-step 5-HR49..51 exception 2 again 2026-05-01T10:00:00Z pause 60\n"
          b"refused-function 5-IR1 exception 1 again 2026-05-01T10:00:00Z pause 3600\n")


def main():
    shutil.rmtree(CORPUS, ignore_errors=True)
    for make in (reads, writes, texts, databases, streams, tools, streams_of_the_desk, files_of_the_desk):
        make()


if __name__ == "__main__":
    main()
