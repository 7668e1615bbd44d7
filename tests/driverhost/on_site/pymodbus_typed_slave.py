#!/usr/bin/python3
"""A slave made of pymodbus whose holding registers hold values that pymodbus itself has laid there.

Prints its port on the first line, then a line for each value: ITEM TEXT, as driverhost takes and shows them, and "end".
After that each line of its input, TYPE ORDER NUMBER, is answered with the value that pymodbus takes out of the
registers from that number on. Ends when its standard input does.
"""

import asyncio
import logging
import sys

from pymodbus.constants import Endian
from pymodbus.datastore import ModbusSequentialDataBlock, ModbusServerContext, ModbusSlaveContext
from pymodbus.framer.rtu_framer import ModbusRtuFramer
from pymodbus.payload import BinaryPayloadBuilder, BinaryPayloadDecoder
from pymodbus.server.async_io import ModbusTcpServer

# Byte order of a word, order of the words.
ORDERS = {
    "ABCD": (Endian.Big, Endian.Big),
    "CDAB": (Endian.Big, Endian.Little),
    "BADC": (Endian.Little, Endian.Big),
    "DCBA": (Endian.Little, Endian.Little),
}

# How pymodbus calls a type, and values of it as driverhost shows them.
TYPES = {
    "u16": ("16bit_uint", ["4660", "65535"]),
    "i16": ("16bit_int", ["-2", "4660"]),
    "u32": ("32bit_uint", ["305419896", "4294967295"]),
    "i32": ("32bit_int", ["-2147483648", "305419896"]),
    "f32": ("32bit_float", ["21.5", "-0.1"]),
    "u64": ("64bit_uint", ["81985529216486895", "18446744073709551615"]),
    "i64": ("64bit_int", ["-9223372036854775808", "81985529216486895"]),
    "f64": ("64bit_float", ["21.5", "-0.1"]),
}

# What pymodbus has no name for: known registers.
KNOWN = [
    ("hex@ABCD", "0xBEEF", [0xBEEF]),
    ("hex@BADC", "0xBEEF", [0xEFBE]),
    ("bin", "0b1000000000000001", [0x8001]),
    ("bcd16", "1234", [0x1234]),
    ("bcd32@ABCD", "12345678", [0x1234, 0x5678]),
    ("bcd32@CDAB", "12345678", [0x5678, 0x1234]),
    ("bcd32@BADC", "12345678", [0x3412, 0x7856]),
    ("bcd32@DCBA", "12345678", [0x7856, 0x3412]),
    ("bcd64@ABCDEFGH", "1234567890123456", [0x1234, 0x5678, 0x9012, 0x3456]),
    ("bcd64@GHEFCDAB", "1234567890123456", [0x3456, 0x9012, 0x5678, 0x1234]),
    ("u64@BADCFEHG", "81985529216486895", [0x2301, 0x6745, 0xAB89, 0xEFCD]),
    ("u64@HGFEDCBA", "81985529216486895", [0xEFCD, 0xAB89, 0x6745, 0x2301]),
    ("str5", "Pump4", [0x5075, 0x6D70, 0x3400]),
    ("str5@BADC", "Pump4", [0x7550, 0x706D, 0x0034]),
    ("u8@AB", "17", [0x1122]),
    ("u8@BA", "34", [0x1122]),
]


class Registers:
    """Registers from number 1 on, filled one value after the other."""

    def __init__(self):
        self.words = []
        self.items = []

    def add(self, suffix, text, words):
        self.items.append((f"HR{len(self.words) + 1}:{suffix}", text))
        self.words += words


def laid_out():
    registers = Registers()
    for name, (method, texts) in TYPES.items():
        for order, (byte_order, word_order) in ORDERS.items():
            for text in texts:
                builder = BinaryPayloadBuilder(byteorder=byte_order, wordorder=word_order)
                getattr(builder, f"add_{method}")(float(text) if "float" in method else int(text))
                registers.add(f"{name}@{order}", text, [word & 0xFFFF for word in builder.to_registers()])
    for suffix, text, words in KNOWN:
        registers.add(suffix, text, words)
    return registers


def decoded(context, request):
    name, order, number = request.split()
    byte_order, word_order = ORDERS[order]
    words = context[1].getValues(3, int(number) - 1, 4)
    decoder = BinaryPayloadDecoder.fromRegisters(words, byteorder=byte_order, wordorder=word_order)
    value = getattr(decoder, f"decode_{TYPES[name][0]}")()
    return f"{value:.6g}" if isinstance(value, float) else str(value)


async def answer_input(context):
    """Answers until the program that started this one has had enough."""
    reader = asyncio.StreamReader()
    await asyncio.get_running_loop().connect_read_pipe(lambda: asyncio.StreamReaderProtocol(reader), sys.stdin)
    while line := await reader.readline():
        print(decoded(context, line.decode()), flush=True)


async def serve():
    registers = laid_out()
    block = ModbusSequentialDataBlock(0, registers.words + [0] * (65536 - len(registers.words)))
    context = ModbusServerContext(slaves={1: ModbusSlaveContext(hr=block, zero_mode=True)}, single=False)
    server = ModbusTcpServer(context, framer=ModbusRtuFramer, address=("127.0.0.1", 0))
    serving = asyncio.create_task(server.serve_forever())
    await server.serving
    print(server.server.sockets[0].getsockname()[1])
    for item, text in registers.items:
        print(item, text)
    print("end", flush=True)
    await answer_input(context)
    serving.cancel()


if __name__ == "__main__":
    # It reports every connection that ends as an error.
    logging.disable(logging.ERROR)
    asyncio.run(serve())
