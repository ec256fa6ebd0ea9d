"""The canvas report in headless Chromium: the screenshot shows the red glow of the error blocks
and the orange glow of the warning block, and the page carries the findings in words and the
links between system levels.
Usage: canvas_glow.py BLOCKARA RESOURCES CHROMIUM MODEL WORK_DIR"""
import struct
import subprocess
import sys
import zlib

blockara, root, chromium, model, work = sys.argv[1:6]
page, shot = work + "/canvas.html", work + "/canvas.png"
status = subprocess.run([blockara, "--root", root, "--prefdir", work + "/prefs", "check", model,
                         "--format", "html", "--out", page]).returncode
assert status == 1, status
html = open(page, encoding="utf-8").read()
assert "Data store &#39;x&#39; of block &#39;A&#39; is defined by another" in html
assert 'href="#L1"' in html and "&#8593; Canvas" in html
subprocess.run([chromium, "--headless", "--disable-gpu", "--no-sandbox", "--hide-scrollbars",
                "--user-data-dir=" + work + "/chromium", "--window-size=1200,900",
                "--screenshot=" + shot, "file://" + page],
               check=True, timeout=120, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def pixels(path):
    """(x, r, g, b) for every pixel of an 8-bit, non-interlaced RGB or RGBA PNG."""
    data = open(path, "rb").read()
    pos, idat, width = 8, b"", 0
    while pos < len(data):
        length, kind = struct.unpack(">I4s", data[pos:pos + 8])
        body = data[pos + 8:pos + 8 + length]
        if kind == b"IHDR":
            width, height, depth, colour, _, _, interlace = struct.unpack(">IIBBBBB", body)
            assert depth == 8 and colour in (2, 6) and interlace == 0, (depth, colour)
            channels = 3 if colour == 2 else 4
        elif kind == b"IDAT":
            idat += body
        pos += 12 + length
    raw, stride, previous = zlib.decompress(idat), width * channels, bytearray(width * channels)
    for y in range(height):
        kind, line = raw[y * (stride + 1)], bytearray(raw[y * (stride + 1) + 1:(y + 1) * (stride + 1)])
        for i in range(stride):
            a = line[i - channels] if i >= channels else 0
            b, c = previous[i], previous[i - channels] if i >= channels else 0
            p = a + b - c
            paeth = a if abs(p - a) <= min(abs(p - b), abs(p - c)) else b if abs(p - b) <= abs(p - c) else c
            line[i] = (line[i] + (0, a, b, (a + b) // 2, paeth)[kind]) & 255
        previous = line
        for x in range(width):
            yield (x,) + tuple(line[x * channels:x * channels + 3])


# The drawings stand left of the findings list, whose coloured text must not count. A glow is
# its rule's colour on the block's border and a soft halo around it that fades into the white.
counts = {"red": 0, "red halo": 0, "orange": 0, "orange halo": 0}
for x, r, g, b in pixels(shot):
    if x >= 600 or r < 200:
        continue
    counts["red"] += g < 90 and b < 90
    counts["red halo"] += 100 < g < r - 30 and abs(g - b) < 30
    counts["orange"] += 110 < g < 190 and b < 80
    counts["orange halo"] += 150 < g < r - 15 and b < g - 50
print("glow pixels:", counts)
# Without the halo (the border alone) the screenshot has about a quarter of these halo pixels.
assert counts["red"] > 100 and counts["orange"] > 100, counts
assert counts["red halo"] > 1500 and counts["orange halo"] > 200, counts
