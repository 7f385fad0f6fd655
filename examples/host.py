"""A host in small: loads the plug-in and draws one frame of a transition, from dusk to dawn.

    python3 host.py /usr/lib Pinwheel 0.4 out.ppm

The first argument is the folder of libtp_vantle.so, beside which a folder has the libraries that stand in for a
host's. Frames are the image library's here: BGRX and bottom-up.
"""
import ctypes
import sys
from ctypes import c_double, c_int32, c_void_p, c_wchar


class TransInfo(ctypes.Structure):
    _fields_ = [("type", c_int32), ("name", c_wchar * 67), ("draw", c_void_p), ("guid", c_wchar * 642)]


class TransParam(ctypes.Structure):
    _fields_ = [("host_fields", ctypes.c_byte * 416), ("duration", c_double), ("position", c_double)]


folder, wanted, position, out_name = sys.argv[1:]
# The plug-in asks for both of its host's libraries by name, and is content with those that are loaded.
images = ctypes.CDLL(folder + "/vantle/libBrix_ImageProc.so", ctypes.RTLD_GLOBAL)
logger = ctypes.CDLL(folder + "/vantle/libQeltLogger.so", ctypes.RTLD_GLOBAL)
plugin = ctypes.CDLL(folder + "/libtp_vantle.so")
plugin.GetTransInfo.restype = ctypes.POINTER(TransInfo)
images.DICreate.restype = c_void_p
images.DIGetBits.restype = ctypes.POINTER(ctypes.c_uint8)
images.DIGetBits.argtypes = images.DIGetPitch.argtypes = images.DIFree.argtypes = [c_void_p]

WIDTH, HEIGHT = 640, 360
out, start, end = (images.DICreate(WIDTH, HEIGHT) for _ in range(3))
pitch = images.DIGetPitch(out)


def paint(frame, colour):
    for y in range(HEIGHT):
        row = bytes(colour(255 * y // HEIGHT)) * WIDTH
        ctypes.memmove(ctypes.addressof(images.DIGetBits(frame).contents) + y * pitch, row, len(row))


paint(start, lambda shade: (shade, 0, 0, 0))
paint(end, lambda shade: (0, 0, 255 - shade // 2, 0))

records = [plugin.GetTransInfo(i).contents for i in range(plugin.GetTransCount())]
draw = next((record.draw for record in records if record.name == wanted), None)
if draw is None:
    sys.exit("No transition is called " + wanted)
function = ctypes.CFUNCTYPE(None, c_void_p, c_void_p, c_void_p, ctypes.POINTER(TransParam))(draw)
function(out, start, end, TransParam(duration=1.0, position=float(position)))

drawn = ctypes.string_at(images.DIGetBits(out), pitch * HEIGHT)
with open(out_name, "wb") as file:
    file.write(b"P6 %d %d 255\n" % (WIDTH, HEIGHT))
    for y in reversed(range(HEIGHT)):
        row = drawn[y * pitch : y * pitch + 4 * WIDTH]
        file.write(bytes(row[x + byte] for x in range(0, 4 * WIDTH, 4) for byte in (2, 1, 0)))
for frame in (out, start, end):
    images.DIFree(frame)
