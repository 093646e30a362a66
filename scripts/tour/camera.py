"""Pictures of the whole screen, by one request of the core protocol each: all of a picture is of
one moment, the pointer is not on it, and no tool's idea of windows comes in between."""

import ctypes

from pixels import Picture

Z_PIXMAP = 2
ALL_PLANES = 0xFFFFFFFF


class _Cookie(ctypes.Structure):
    _fields_ = [("sequence", ctypes.c_uint)]


class _Screen(ctypes.Structure):
    _fields_ = [("root", ctypes.c_uint32), ("default_colormap", ctypes.c_uint32),
                ("white_pixel", ctypes.c_uint32), ("black_pixel", ctypes.c_uint32),
                ("current_input_masks", ctypes.c_uint32), ("width", ctypes.c_uint16),
                ("height", ctypes.c_uint16)]


class _ScreenIterator(ctypes.Structure):
    _fields_ = [("data", ctypes.POINTER(_Screen)), ("rem", ctypes.c_int), ("index", ctypes.c_int)]


def _library():
    xcb = ctypes.CDLL("libxcb.so.1")
    pointer, word, half = ctypes.c_void_p, ctypes.c_uint32, ctypes.c_uint16
    for name, result, arguments in (
            ("xcb_connect", pointer, [ctypes.c_char_p, pointer]),
            ("xcb_disconnect", None, [pointer]),
            ("xcb_connection_has_error", ctypes.c_int, [pointer]),
            ("xcb_get_setup", pointer, [pointer]),
            ("xcb_setup_roots_iterator", _ScreenIterator, [pointer]),
            ("xcb_get_image", _Cookie, [pointer, ctypes.c_uint8, word, ctypes.c_int16,
                                        ctypes.c_int16, half, half, word]),
            ("xcb_get_image_reply", pointer, [pointer, _Cookie, pointer]),
            ("xcb_get_image_data", pointer, [pointer]),
            ("xcb_get_image_data_length", ctypes.c_int, [pointer])):
        function = getattr(xcb, name)
        function.restype, function.argtypes = result, arguments
    return xcb


class Camera:
    def __init__(self, display):
        self._xcb = _library()
        self._free = ctypes.CDLL(None).free
        self._free.argtypes = [ctypes.c_void_p]
        self._connection = self._xcb.xcb_connect(display.encode(), None)
        if self._xcb.xcb_connection_has_error(self._connection):
            raise RuntimeError("cannot connect to " + display)
        setup = self._xcb.xcb_get_setup(self._connection)
        self._screen = self._xcb.xcb_setup_roots_iterator(setup).data.contents

    def close(self):
        self._xcb.xcb_disconnect(self._connection)

    def take(self):
        xcb, screen = self._xcb, self._screen
        cookie = xcb.xcb_get_image(self._connection, Z_PIXMAP, screen.root, 0, 0, screen.width,
                                   screen.height, ALL_PLANES)
        reply = xcb.xcb_get_image_reply(self._connection, cookie, None)
        if not reply:
            raise RuntimeError("the X server gives no picture of its screen")
        try:
            length = xcb.xcb_get_image_data_length(reply)
            if length != 4 * screen.width * screen.height:
                raise ValueError("an X server of another pixel format")
            data = bytearray(ctypes.string_at(xcb.xcb_get_image_data(reply), length))
        finally:
            self._free(reply)
        data[3::4] = bytes(screen.width * screen.height)  # undefined on the wire
        return Picture(screen.width, screen.height, bytes(data))
