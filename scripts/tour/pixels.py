"""Pictures: cut, compared, kept as PNG. Standard library only."""

import struct
import zlib


class Picture:
    """`data` holds four bytes a pixel: blue, green, red, unused."""

    def __init__(self, width, height, data):
        self.width, self.height, self.data = width, height, data

    def row(self, y):
        return self.data[4 * self.width * y: 4 * self.width * (y + 1)]

    def pixel(self, x, y):
        at = 4 * (self.width * y + x)
        return self.data[at + 2], self.data[at + 1], self.data[at]

    def cut(self, x, y, width, height):
        if x < 0 or y < 0 or x + width > self.width or y + height > self.height:
            raise ValueError(f"{width}x{height}+{x}+{y} is not in {self.width}x{self.height}")
        rows = [self.row(y + each)[4 * x: 4 * (x + width)] for each in range(height)]
        return Picture(width, height, b"".join(rows))

    def without(self, holes):
        """With these rectangles (x, y, width, height; cut to the picture) in one colour."""
        data = bytearray(self.data)
        for x, y, width, height in holes:
            left, right = max(0, x), min(self.width, x + width)
            for each in range(max(0, y), min(self.height, y + height)):
                start = 4 * (self.width * each + left)
                data[start: start + 4 * max(0, right - left)] = bytes(4 * max(0, right - left))
        return Picture(self.width, self.height, bytes(data))

    def save(self, path):
        colours = bytearray(3 * self.width * self.height)
        for channel in range(3):
            colours[channel::3] = self.data[2 - channel::4]
        stride = 3 * self.width
        lines = b"".join(b"\0" + colours[stride * y: stride * (y + 1)] for y in range(self.height))

        def chunk(kind, body):
            return (struct.pack(">I", len(body)) + kind + body +
                    struct.pack(">I", zlib.crc32(kind + body)))

        header = struct.pack(">IIBBBBB", self.width, self.height, 8, 2, 0, 0, 0)
        with open(path, "wb") as file:
            file.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) +
                       chunk(b"IDAT", zlib.compress(lines, 6)) + chunk(b"IEND", b""))


# The frame around what is shared: its line, the rounding of its corners, and its colour.
LINE, ROUNDING, GREEN = 4, 8, (0x34, 0xC7, 0x59)


def frame_holes(width, height, scale=1.0):
    """Where the frame around what is shared lies in a picture of that size, which shows it at
    `scale`: a pixel more where that is not 1, for what is mixed with it."""
    line, corner = (size if scale == 1 else int(size * scale) + 2 for size in (LINE, ROUNDING))
    return [(0, 0, width, line), (0, height - line, width, line),
            (0, 0, line, height), (width - line, 0, line, height),
            *((x, y, corner, corner) for x in (0, width - corner) for y in (0, height - corner))]


def is_framed(picture):
    """Whether the frame lies on the left and the lower edge of what the picture shows."""
    x, y = picture.width // 2, picture.height // 2
    return all(tuple(picture.pixel(*place)[:3]) == GREEN
               for place in ((0, y), (LINE - 1, y), (x, picture.height - 1),
                             (x, picture.height - LINE)))


def differing_pixels(first, second, holes=()):
    """How many pixels differ outside of the holes."""
    if (first.width, first.height) != (second.width, second.height):
        return max(first.width * first.height, second.width * second.height)
    one, other = first.without(holes), second.without(holes)
    count = 0
    for y in range(one.height):
        row, reference = one.row(y), other.row(y)
        if row != reference:
            count += sum(row[4 * x: 4 * x + 4] != reference[4 * x: 4 * x + 4]
                         for x in range(one.width))
    return count


def differing_box(first, second):
    """x, y, width, height of the smallest rectangle outside of which two pictures of one size are
    equal; None when they are equal."""
    rows = [y for y in range(first.height) if first.row(y) != second.row(y)]
    columns = [x for y in rows for x in range(first.width)
               if first.row(y)[4 * x: 4 * x + 4] != second.row(y)[4 * x: 4 * x + 4]]
    if not columns:
        return None
    left, top = min(columns), rows[0]
    return left, top, max(columns) + 1 - left, rows[-1] + 1 - top


def _bilinear(source, x, y):
    """The colour at a point between pixel centres, as X's bilinear filter defines it."""
    x, y = max(0.0, x - 0.5), max(0.0, y - 0.5)
    left, top = int(x), int(y)
    right, bottom = min(left + 1, source.width - 1), min(top + 1, source.height - 1)
    across, down = x - left, y - top
    corners = (source.pixel(left, top), source.pixel(right, top),
               source.pixel(left, bottom), source.pixel(right, bottom))
    weights = ((1 - across) * (1 - down), across * (1 - down), (1 - across) * down, across * down)
    return [sum(weight * corner[channel] for weight, corner in zip(weights, corners))
            for channel in range(3)]


def scaled_difference(source, scaled, holes=(), step=5, tolerance=8):
    """The share (0 to 1) of pixels of `scaled` that are not what `source`, reduced or enlarged
    bilinearly to that size, has there. Looks at every `step`th pixel in both directions; `holes`
    are rectangles of `scaled`. `tolerance` in levels of 255 covers the server's short weights."""
    across, down = source.width / scaled.width, source.height / scaled.height
    wrong = total = 0
    for y in range(0, scaled.height, step):
        for x in range(0, scaled.width, step):
            if any(left <= x < left + width and top <= y < top + height
                   for left, top, width, height in holes):
                continue
            total += 1
            expected = _bilinear(source, (x + 0.5) * across, (y + 0.5) * down)
            wrong += any(abs(a - b) > tolerance for a, b in zip(scaled.pixel(x, y), expected))
    return wrong / total


def dark_share(picture):
    """The share of pixels that are pure black."""
    black = bytes(4)
    return sum(picture.data[at: at + 4] == black
               for at in range(0, len(picture.data), 4)) / (picture.width * picture.height)
