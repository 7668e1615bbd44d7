#!/usr/bin/python3
"""Values laid into registers by pymodbus: a line for each of type, order, the value as text, the registers.

Wants the distribution's python3-pymodbus. It has no name for "bytes swapped within words" but a byte order and a word
order apart.
"""

from pymodbus.constants import Endian
from pymodbus.payload import BinaryPayloadBuilder

# Byte order of a word, order of the words.
ORDERS = {
    "ABCD": (Endian.Big, Endian.Big),
    "CDAB": (Endian.Big, Endian.Little),
    "BADC": (Endian.Little, Endian.Big),
    "DCBA": (Endian.Little, Endian.Little),
}

VALUES = {
    "u16": ("add_16bit_uint", [0, 1, 4660, 65535]),
    "i16": ("add_16bit_int", [0, -1, 4660, -32768]),
    "u32": ("add_32bit_uint", [1, 305419896, 4294967295]),
    "i32": ("add_32bit_int", [-1, 305419896, -2147483648]),
    "f32": ("add_32bit_float", [1.0, -0.1, 123456.789, 1e-30]),
    "u64": ("add_64bit_uint", [1, 0x0123456789ABCDEF, 2**64 - 1]),
    "i64": ("add_64bit_int", [-1, 0x0123456789ABCDEF, -(2**63)]),
    "f64": ("add_64bit_float", [1.0, -0.1, 123456.789, 1e-300]),
}


# What pymodbus has no name for are numbers whose digits are written otherwise.
DIGITS = {
    "hex": ("add_16bit_uint", "0x{:04X}", [0, 0xBEEF]),
    "hex32": ("add_32bit_uint", "0x{:08X}", [0xDEADBEEF]),
    "hex64": ("add_64bit_uint", "0x{:016X}", [0x0123456789ABCDEF]),
    "bin": ("add_16bit_uint", "0b{:016b}", [0x8001]),
    "bin32": ("add_32bit_uint", "0b{:032b}", [0x80010203]),
    "bin64": ("add_64bit_uint", "0b{:064b}", [0x8001020304050607]),
    "bcd16": ("add_16bit_uint", "{:x}", [0, 0x1234]),
    "bcd32": ("add_32bit_uint", "{:x}", [0x12345678]),
    "bcd64": ("add_64bit_uint", "{:x}", [0x1234567890123456]),
}


def registers_of(add, values, byte_order, word_order):
    builder = BinaryPayloadBuilder(byteorder=byte_order, wordorder=word_order)
    for value in values:
        getattr(builder, add)(value)
    return builder.to_registers()


def show(name, order, text, registers):
    print(name, order, text, *(f"{register & 0xFFFF:04X}" for register in registers))


def main():
    for order, orders in ORDERS.items():
        for name, (add, values) in VALUES.items():
            for value in values:
                show(name, order, repr(value), registers_of(add, [value], *orders))
        for name, (add, form, values) in DIGITS.items():
            for value in values:
                show(name, order, form.format(value), registers_of(add, [value], *orders))
    # Bytes and texts run on from register to register, and pymodbus knows them high byte first alone.
    show("u8", "AB", "17,254", registers_of("add_8bit_uint", [17, 254], *ORDERS["ABCD"]))
    show("i8", "AB", "-17,127", registers_of("add_8bit_int", [-17, 127], *ORDERS["ABCD"]))
    for text in ("AB", "Pump", "Valve 12"):
        show(f"str{len(text)}", "AB", text.replace(" ", "_"), registers_of("add_string", [text], *ORDERS["ABCD"]))


if __name__ == "__main__":
    main()
