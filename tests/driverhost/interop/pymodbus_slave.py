#!/usr/bin/python3
"""A slave made of pymodbus: a TCP server with stations 1 and 2.

Usage: pymodbus_slave.py [rtu|socket]: RTU framing, which is the default, or Modbus/TCP.

Prints its port on the first line and ends when its standard input does. Wants the distribution's python3-pymodbus,
python3-serial and python3-serial-asyncio.
"""

import asyncio
import logging
import sys

from pymodbus.datastore import ModbusSequentialDataBlock, ModbusServerContext, ModbusSlaveContext
from pymodbus.framer.rtu_framer import ModbusRtuFramer
from pymodbus.framer.socket_framer import ModbusSocketFramer
from pymodbus.server.async_io import ModbusTcpServer

ADDRESSES = 65536
FRAMERS = {"rtu": ModbusRtuFramer, "socket": ModbusSocketFramer}


def block(value_at):
    """All addresses of an area, offset 0 first."""
    return ModbusSequentialDataBlock(0, [value_at(offset) for offset in range(ADDRESSES)])


def station(number):
    """Inputs hold what shows their address and station; what can be written holds 0."""
    return ModbusSlaveContext(
        di=block(lambda offset: offset % 3 == 0),
        co=block(lambda offset: False),
        ir=block(lambda offset: (offset * 7 + number) & 0xFFFF),
        hr=block(lambda offset: 0),
        zero_mode=True,
    )


async def end_of_input():
    """Waits until the program that started this one has gone or has had enough."""
    reader = asyncio.StreamReader()
    await asyncio.get_running_loop().connect_read_pipe(lambda: asyncio.StreamReaderProtocol(reader), sys.stdin)
    await reader.read()


async def serve(framing):
    """Serves until the input ends."""
    context = ModbusServerContext(slaves={number: station(number) for number in (1, 2)}, single=False)
    server = ModbusTcpServer(
        context,
        framer=FRAMERS[framing],
        address=("127.0.0.1", 0),
        broadcast_enable=True,
        ignore_missing_slaves=True,
    )
    serving = asyncio.create_task(server.serve_forever())
    await server.serving
    print(server.server.sockets[0].getsockname()[1], flush=True)
    await end_of_input()
    serving.cancel()


if __name__ == "__main__":
    # It reports every connection that ends as an error.
    logging.disable(logging.ERROR)
    asyncio.run(serve(sys.argv[1] if len(sys.argv) > 1 else "rtu"))
