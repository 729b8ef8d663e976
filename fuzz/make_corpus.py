#!/usr/bin/env python3
"""Makes the seed corpora of the fuzz targets: make_corpus.py FOLDER."""
import itertools
import json
import pathlib
import random
import struct
import sys

LEVELS = ["Shared for All Computers", "Windows Only", "Mac Only", "Web Only", "iOS Only",
          "Android Only"]
SEPARATOR = b"\n%%\n"

TEXTS = [b"", b"a", b"View", b"VIEW", b"a_b", b"File 10", b"file 9", b"x01y", b"4294967297",
         "\u00e9\u00c9\u0131\u017f\u00b5\u0178".encode(), "\u20ac \U0001F600".encode(),
         b"\xed\xa0\x80", b"\xed\xa0\x80\xed\xb0\x80", b"\xc0\x80", b"\xe3\x81", b"\xed\xa0",
         b"\xf4\x90\x80\x80", b"\xff\xfe", b"a\0b", b"\"\\\n\x7f"]

PATHS = [b"", b"/", b"//", b"\\\\server\\share", b"C:", b"C:/", b"C:\\a\\\\b\\", b"C:\\a?b", b"c:a//",
         b"ab:/", b"http://", b"http:///a", b"http://h:80//x/", b"file://server/x", b"smb://s//t",
         b"a/", b"/b", b"//b", b"b.txt", b"a.b/c", b"..", b"::/", b"<>:\"*?|\x01"]

VALUES = ["0", "-1", "2147483647", "-2147483648", "2147483648", "18446744073709551616", "2.0",
          "-0.0", "0.1", "1e308", "1e309", "5e-324", "1e-400", "0." + "0" * 400 + "1", "1e99999999999",
          "true", "false", "null", "[]", "{}", "\"\"", "\"text\"", "\"\\u0000\"", "\"\\ud800\"",
          "\"\\ud83d\\ude00\"", "\"\\udc00\\ud800\"", "\"\u00e9\"", "\"\\\\ud800\"", "\"\\/\\b\\f\""]


def members(names_and_values):
    return "{" + ",".join(json.dumps(name) + ":" + value for name, value in names_and_values) + "}"


def shared_file(categories):
    return members((level, members(categories)) for level in LEVELS).encode()


def private_file(categories):
    return members([("This Computer Only", members(categories))]).encode()


def store_files():
    every = [("Every", members((f"key {n}", value) for n, value in enumerate(VALUES)))]
    yield shared_file(every) + SEPARATOR + private_file(every)
    for value in VALUES:
        yield private_file([("a", members([("k", value)]))]) + SEPARATOR + \
            private_file([(json.loads(value) if value[0] == '"' and "\\ud" not in value else "b",
                           members([("k", value), ("K", "1")]))])
    cases = [("A", members([("k", "1")])), ("a", members([("K", "2"), ("k", "\"3\"")])), ("b", "{}")]
    yield shared_file(cases) + SEPARATOR + b"\xef\xbb\xbf" + private_file(cases)
    yield b"" + SEPARATOR + b""
    yield b"{}" + SEPARATOR + b"[]"
    yield b'{"a":1,"b":{"c":2}}' + SEPARATOR + b'{"a":{"b":{"c":1}},"d":{"e":{}}}'
    yield shared_file([])[:-1] + SEPARATOR + private_file([]) + b"}"
    yield b'{"a":' + b"[" * 3000 + b"]" * 3000 + b"}" + SEPARATOR + b'{"a":' * 3000
    for text in TEXTS:
        yield b'{"l":{"' + text + b'":{"' + text + b'":"' + text + b'"}}}' + SEPARATOR + text


def json_text():
    for text in store_files():
        yield from text.split(SEPARATOR)
    for value in VALUES + ["0e309", "0.0e309", "0.0e310", "-0", "01", "1.", "1e", "1e+5", "1e+-5",
                           "-", "9223372036854775808", "-9223372036854775809", "9" * 309 + "e-9",
                           "1" + "0" * 308, "1" + "0" * 309 + "e-9", "tru", "nul", "[1,2,{}]",
                           "[1,]", '{"a":1,}', '"\\ud83d\\ude00\\ud83d"', '"\\u12G4"', '"\t"']:
        for text in ('{"l":{"c":{"k":%s}}}', "%s", '{"l":{"c":{"d":[%s]}},"m":{"c":%s}}'):
            yield text.replace("%s", value).encode()
    long = "0123456789abcdef" * 3
    for cut in range(40):
        yield ('{"l": {"c": {"%s": "%s\u00e9"}}}' % (long[cut:], long[:cut])).encode()


def utf8():
    yield from TEXTS
    yield b"".join(TEXTS)
    for length in (1, 2, 3, 4):
        yield b"".join(bytes(t) for t in itertools.islice(
            itertools.product((0x41, 0x80, 0xBF, 0xC2, 0xE0, 0xED, 0xF0, 0xF4), repeat=length), 512))
    for text in TEXTS:
        yield text.decode(errors="replace").encode("utf-16-le")


def prefixed(text):
    """A text as the targets take it: its length below 101 and the bytes, or units from 101 on."""
    return bytes([len(text)]) + text


def prefixed_units(text):
    units = text.decode(errors="replace").encode("utf-16-le")
    return bytes([101 + len(units) // 2]) + units


def comparisons():
    for start in range(len(TEXTS)):
        chosen = [TEXTS[(start + step) % len(TEXTS)] for step in (0, 1, 5)]
        yield b"".join(map(prefixed, chosen))
        yield b"".join(map(prefixed_units, chosen))


def path_text():
    for first in PATHS:
        for second in (b"", b"b", b"/b", b"//b", b"c\\\\d\\"):
            yield prefixed(first) + prefixed(second)


def store_operations():
    # The first store, write, two names of the pool, the int 5.
    write = [0, 0, 1, 0, 5, 0, 5, 0, 0, 0]
    yield bytes(itertools.chain.from_iterable(
        write + [0, operation, 1, 0, 0, 1, 1] for operation in range(18)))
    # The first store, load with the classification; then it reads every classified preference.
    yield bytes([0, 11, 0]) + b"".join(
        bytes([0, 2, 0]) + struct.pack("<H", row) + bytes([row % 2]) for row in range(600))
    yield from noise("store_operations")


def protected_saves():
    # Write, save, load, damage and delete the files, by either store.
    for middle in ([1, 7], [1, 4], [0, 5, 0], [0, 5, 1], [1, 6], [1, 3, 0], [1, 2, 0, 0, 2]):
        yield bytes([0, 0, 0, 0, 2, 5, 0, 7, 1, 4, 1, 1, 1, 1, 3, 6, 1, 7] + middle +
                    [0, 0, 1, 1, 3, 9, 0, 7, 1, 7, 0, 4])
    yield from noise("protected_saves")


def variant():
    yield bytes(itertools.chain.from_iterable(
        [5, 0, 0, 2, 0, 1, operation, 0, 1, 0, 0, 0] for operation in range(10)))
    yield b"".join(bytes([0, 0, 0, 7]) + struct.pack("<d", number) + bytes([9, 0, 0]) for number in
                   (2.9, -2.9, 2.0**31, -2.0**31 - 0.5, 2.0**63, float("nan"), float("inf"), 1e300))
    yield from noise("variant")


def noise(seed):
    """Operations and their arguments at random, the same ones each time."""
    generator = random.Random(seed)
    for length in (8, 32, 128, 512):
        for _ in range(12):
            yield bytes(generator.choice((generator.randrange(8), generator.randrange(32),
                                          generator.randrange(256))) for _ in range(length))


def main():
    for target in (store_files, json_text, utf8, store_operations, protected_saves, variant,
                   comparisons, path_text):
        folder = pathlib.Path(sys.argv[1]) / target.__name__
        folder.mkdir(parents=True, exist_ok=True)
        for old in folder.iterdir():
            old.unlink()
        for number, seed in enumerate(target()):
            (folder / f"seed-{number:03}").write_bytes(seed)


if __name__ == "__main__":
    main()
