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


def registers_of(add, value, byte_order, word_order):
    builder = BinaryPayloadBuilder(byteorder=byte_order, wordorder=word_order)
    getattr(builder, add)(value)
    return builder.to_registers()


def main():
    for name, (add, values) in VALUES.items():
        for order, (byte_order, word_order) in ORDERS.items():
            for value in values:
                registers = registers_of(add, value, byte_order, word_order)
                print(name, order, repr(value), *(f"{register & 0xFFFF:04X}" for register in registers))
    for text in ("AB", "Pump", "Valve 12"):
        registers = registers_of("add_string", text, Endian.Big, Endian.Big)
        print(f"str{len(text)}", "ABCD", text.replace(" ", "_"), *(f"{register:04X}" for register in registers))


if __name__ == "__main__":
    main()
