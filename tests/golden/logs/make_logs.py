#!/usr/bin/env python3
"""Made the logs beside it, once, with nothing of this project but its development key and the openssl program.

Every later reader must read them: they are not to be made again. The wrapped key is different at each run of this file.
"""

import pathlib
import struct
import subprocess

HERE = pathlib.Path(__file__).resolve().parent
PUBLIC_KEY = HERE.parents[2] / "keys/development/log-public.pem"
SESSION_KEY = bytes(range(0x40, 0x60))
SCRAMBLING_KEY = b"5D20CA71B3E84f96A17EC4409D8266B1"
BOM = b"\xef\xbb\xbf"

# Where they stand below, the scrambled form of these is an unpaired surrogate, which becomes U+FFFD in the file.
LOST = str.maketrans("\u9b3c\u9b00", "\ufffd\ufffd")
# A reader takes a line feed inside a scrambled message for a byte that was left as it was.
LINE_FEED = ("two\nlines", "two" + chr(0x0A ^ SCRAMBLING_KEY[3]) + "lines")

START = "=========== Started logging for thread {} ({}) on {} ==========="
# Day, time and message of each record, thread after thread. The run passes midnight.
RUN = {
    4242: [
        (0, "23:59:58:100", START.format(4242, "No description", "14.11.2025")),
        (0, "23:59:58:900", "Begin LoadFilesFromResources\n"),
        (0, "23:59:59:000", "K\u00f6rner, \u65e5\u672c\u8a9e \u4e00\u3000\uac00, \U0001f600\n"),
        None,  # the thread starts a second time
        (0, "23:59:59:001", START.format(4242, "again (on time)", "14.11.2025")),
        (1, "00:00:00:000", "the next day\n"),
        (1, "00:00:03:500", "two\nlines\n"),
        (1, "00:00:04:000", "\u9b3c and a\u9b00: lost, and nothing else of this record is\n"),
    ],
    4343: [
        (0, "23:59:59:000", START.format(4343, "refresher", "14.11.2025")),
        (0, "23:59:59:999", "of the first day\n"),
        (1, "00:00:02:000", "one clock was set back\n"),
        (1, "00:00:01:000", "here\n"),
        (1, "00:00:03:500", "x\n"),
    ],
}


def openssl(*arguments, data):
    return subprocess.run(["openssl", *arguments], input=data, check=True, capture_output=True).stdout


def sealed_record(time, message):
    plain = f"[{time}] {message}\n".encode("utf-16-le")
    cipher = openssl("enc", "-aes-256-cbc", "-K", SESSION_KEY.hex(), "-iv", "00" * 16, data=plain)
    return struct.pack("<I", len(cipher)) + cipher


def key_header():
    blob = struct.pack("<III", 0x4D42444B, 1, len(SESSION_KEY)) + SESSION_KEY
    wrapped = openssl("pkeyutl", "-encrypt", "-pubin", "-inkey", str(PUBLIC_KEY), "-pkeyopt", "rsa_padding_mode:pkcs1",
                      data=blob)
    return struct.pack("<I", len(wrapped)) + wrapped


def scrambled(message):
    """The message without its last character, byte by byte in UTF-16."""
    out, index = bytearray(), 0
    for byte in message.encode("utf-16-le")[:-2]:
        if byte:
            turned = byte ^ SCRAMBLING_KEY[index % len(SCRAMBLING_KEY)]
            byte = byte if turned in (0x00, 0x0A) else turned
            index += 1
        out.append(byte)
    return bytes(out).decode("utf-16-le", errors="replace")


def fall_back_line(time, message):
    return f"[{time}] {scrambled(message)}\r\n".encode("utf-8")


def expected(messages):
    """Time, thread and message, in the order of the timeline: the clock that was set back keeps its records' places."""
    rows = []
    for thread, records in RUN.items():
        last = (0, "")
        for order, (day, time, message) in enumerate(record for record in records if record):
            last = max(last, (day, time))
            rows.append((last, thread, order, time, messages(message).replace("\n", "\\n")))
    return "".join(f"{time} {thread} {message}\n" for _, thread, _, time, message in sorted(rows))


def main():
    header = key_header()
    sealed = {t: b"".join(sealed_record(r[1], r[2]) if r else header for r in rs) for t, rs in RUN.items()}
    lines = {t: BOM + b"".join(fall_back_line(r[1], r[2]) for r in rs if r) for t, rs in RUN.items()}
    files = {"golden.1763128000.kyinstall.v2.bin": header + b"".join(sealed.values()),
             "golden.1763128002.kyinstall.bin": b"".join(lines.values())}
    for thread in RUN:
        files[f"golden.1763128001.{thread}.v2.bin"] = header + sealed[thread]
        files[f"golden.1763128003.{thread}.bin"] = lines[thread]
    files["sealed-timeline.txt"] = expected(lambda message: message).encode("utf-8")
    files["fall-back-timeline.txt"] = expected(lambda message: message[:-1].translate(LOST).replace(*LINE_FEED)).encode("utf-8")
    for name, content in files.items():
        (HERE / name).write_bytes(content)


if __name__ == "__main__":
    main()
