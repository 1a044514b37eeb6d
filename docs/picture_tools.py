"""Small PNG pictures with nothing but the standard library: read, write, put side by side, draw the sample scene.

A picture is (width, height, rows); a row is a bytearray of red, green, blue or red, green, blue, alpha.
"""
import math
import struct
import zlib

SIGNATURE = b"\x89PNG\r\n\x1a\n"


def chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


def paeth(left, up, corner):
    estimate = left + up - corner
    by_left, by_up, by_corner = abs(estimate - left), abs(estimate - up), abs(estimate - corner)
    if by_left <= by_up and by_left <= by_corner:
        return left
    return up if by_up <= by_corner else corner


def unfilter(kind, row, above, step):
    """Undoes one row's filter in place; `above` is the finished row before it."""
    for i in range(len(row)):
        left = row[i - step] if i >= step else 0
        corner = above[i - step] if i >= step else 0
        guess = (0, left, above[i], (left + above[i]) // 2, paeth(left, above[i], corner))[kind]
        row[i] = (row[i] + guess) & 255


def read_png(path):
    """An 8-bit red-green-blue picture, with or without alpha, as the tool writes it."""
    with open(path, "rb") as file:
        data = file.read()
    if not data.startswith(SIGNATURE):
        raise SystemExit(f"{path}: no PNG")
    packed, at = b"", len(SIGNATURE)
    while at < len(data):
        (length,) = struct.unpack(">I", data[at:at + 4])
        kind, body = data[at + 4:at + 8], data[at + 8:at + 8 + length]
        if kind == b"IHDR":
            width, height, depth, colour, _, _, interlace = struct.unpack(">IIBBBBB", body)
            if depth != 8 or colour not in (2, 6) or interlace:
                raise SystemExit(f"{path}: only plain 8-bit RGB or RGBA is read here")
        elif kind == b"IDAT":
            packed += body
        at += 12 + length
    step = 3 if colour == 2 else 4
    raw, rows, above = zlib.decompress(packed), [], bytearray(width * step)
    for y in range(height):
        start = y * (width * step + 1)
        row = bytearray(raw[start + 1:start + 1 + width * step])
        unfilter(raw[start], row, above, step)
        rows.append(row)
        above = row
    return width, height, rows


def over(picture, background):
    """Straight alpha flattened onto one colour."""
    width, height, rows = picture
    if len(rows[0]) == width * 3:
        return picture
    flat = []
    for row in rows:
        line = bytearray(width * 3)
        for x in range(width):
            alpha = row[x * 4 + 3]
            for k in range(3):
                line[x * 3 + k] = (row[x * 4 + k] * alpha + background[k] * (255 - alpha) + 127) // 255
        flat.append(line)
    return width, height, flat


def side_by_side(left, right, gap, colour):
    width, height, rows = left
    between = bytearray(bytes(colour) * gap)
    joined = [a + between + b for a, b in zip(rows, right[2])]
    return width + gap + right[0], height, joined


def filtered(row, above, kind):
    out = bytearray(len(row))
    for i, value in enumerate(row):
        left = row[i - 3] if i >= 3 else 0
        corner = above[i - 3] if i >= 3 else 0
        guess = (0, left, above[i], (left + above[i]) // 2, paeth(left, above[i], corner))[kind]
        out[i] = (value - guess) & 255
    return out


def cost(row):
    """The usual guess at how well a row packs: the smaller the differences, the better."""
    return sum(value if value < 128 else 256 - value for value in row)


def encode(width, height, colour, body, extra=b""):
    header = struct.pack(">IIBBBBB", width, height, 8, colour, 0, 0, 0)
    return (SIGNATURE + chunk(b"IHDR", header) + extra + chunk(b"IDAT", zlib.compress(bytes(body), 9))
            + chunk(b"IEND", b""))


def png_bytes(picture):
    """A flat picture as a file's bytes; with at most 256 colours as a palette, which is a third of the size."""
    width, height, rows = picture
    colours = sorted({bytes(row[i:i + 3]) for row in rows for i in range(0, len(row), 3)})
    body = bytearray()
    if len(colours) <= 256:
        index = {colour: i for i, colour in enumerate(colours)}
        for row in rows:
            body.append(0)
            body += bytes(index[bytes(row[i:i + 3])] for i in range(0, len(row), 3))
        return encode(width, height, 3, body, chunk(b"PLTE", b"".join(colours)))
    above = bytearray(width * 3)
    for row in rows:
        kind, best = min(((k, filtered(row, above, k)) for k in range(5)), key=lambda pair: cost(pair[1]))
        body.append(kind)
        body += best
        above = row
    return encode(width, height, 2, body)


def half_size(picture):
    """Each pixel the mean of four."""
    width, height, rows = picture
    small = []
    for y in range(0, height - 1, 2):
        upper, lower, row = rows[y], rows[y + 1], bytearray()
        for x in range(0, (width - 1) * 3, 6):
            for k in range(x, x + 3):
                row.append((upper[k] + upper[k + 3] + lower[k] + lower[k + 3] + 2) // 4)
        small.append(row)
    return width // 2, height // 2, small


def widest_channel(box):
    """(spread times pixels, channel) of the channel in which the box's colours lie farthest apart."""
    weight = sum(count for _, count in box)
    return max(((max(c[k] for c, _ in box) - min(c[k] for c, _ in box)) * weight, k) for k in range(3))


def split_by_median(box, channel):
    """Two boxes with half of the pixels each, none of them empty."""
    box.sort(key=lambda pair: (pair[0][channel], pair[0]))
    half, seen = sum(count for _, count in box) / 2, 0
    for i, (_, count) in enumerate(box):
        seen += count
        if seen >= half:
            cut = min(max(i + 1, 1), len(box) - 1)
            return box[:cut], box[cut:]
    raise AssertionError("half of the pixels is always reached")


def with_few_colours(picture, most):
    """The picture with at most so many colours, by median cut."""
    width, height, rows = picture
    counts = {}
    for row in rows:
        for i in range(0, len(row), 3):
            colour = bytes(row[i:i + 3])
            counts[colour] = counts.get(colour, 0) + 1
    if len(counts) <= most:
        return picture
    boxes = [(widest_channel(box), box) for box in [sorted(counts.items())]]
    while len(boxes) < most:
        worst = max(range(len(boxes)), key=lambda i: (boxes[i][0][0], -i))
        (_, channel), box = boxes.pop(worst)
        boxes += [(widest_channel(part), part) for part in split_by_median(box, channel)]
    mean = {}
    for _, box in boxes:
        weight = sum(count for _, count in box)
        middle = bytes((sum(c[k] * count for c, count in box) + weight // 2) // weight for k in range(3))
        mean.update((colour, middle) for colour, _ in box)
    fewer = []
    for row in rows:
        line = bytearray()
        for i in range(0, len(row), 3):
            line += mean[bytes(row[i:i + 3])]
        fewer.append(line)
    return width, height, fewer


def hills(width, height):
    """A flat landscape with edges in every direction, so that a displacement shows."""
    sky = [(250, 222, 170), (247, 205, 150), (242, 184, 134), (232, 160, 124), (214, 136, 122), (188, 114, 124)]
    land = [(98, 116, 122), (74, 110, 96), (58, 92, 70), (40, 66, 54)]
    rows = []
    for v in range(height):
        row, y = bytearray(), v / height
        for u in range(width):
            x = u / width
            colour = sky[min(5, int((0.62 - y) / 0.62 * 6))] if y < 0.62 else sky[0]
            if math.hypot((x - 0.68) * 16 / 9, y - 0.34) < 0.13:
                colour = (255, 244, 214)
            for i, shade in enumerate(land):
                top = 0.50 + 0.13 * i + (0.07 - 0.012 * i) * math.sin(x * (9 - 1.7 * i) + 1.9 * i)
                if y > top:
                    colour = shade
                    if i == 3 and int((x - 0.5) / (y - 0.42) * 14 + 100) % 2:
                        colour = (52, 84, 62)
            row += bytes(colour)
        rows.append(row)
    return width, height, rows
