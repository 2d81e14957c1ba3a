#!/usr/bin/env python3
"""A plotting tool's end of the connection: takes one connection and prints every record as a line of its values.

Usage: plot_peer.py FireWater|JustFloat [records]. Prints the port first. Ends after so many records, or when the sender
goes away."""
import socket
import struct
import sys


def fire_water(stream):
    for line in stream:
        if not line.endswith(b"\r\n"):
            sys.exit(f"half a record: {line!r}")
        yield [float(value) for value in line[:-2].split(b",")]


def just_float(stream):
    values = []
    while word := stream.read(4):
        if word == b"\x00\x00\x80\x7f":
            yield values
            values = []
        else:
            values.append(struct.unpack("<f", word)[0])


def main():
    read = {"FireWater": fire_water, "JustFloat": just_float}[sys.argv[1]]
    limit = int(sys.argv[2]) if len(sys.argv) > 2 else 0
    with socket.create_server(("127.0.0.1", 0)) as server:
        print(server.getsockname()[1], flush=True)
        connection, _ = server.accept()
        with connection, connection.makefile("rb") as stream:
            for count, values in enumerate(read(stream), 1):
                print(",".join(f"{value:g}" for value in values), flush=True)
                if count == limit:
                    return


main()
