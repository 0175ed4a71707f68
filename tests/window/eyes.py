"""Eyes and ears for tests of the preview: the pixels of a part of the screen, and a sound server whose device is a tape."""
import contextlib
import ctypes
import os
import subprocess
import time
from array import array
from pathlib import Path

from desk import until


class _Image(ctypes.Structure):
    """The beginning of an XImage."""
    _fields_ = [("width", ctypes.c_int), ("height", ctypes.c_int), ("xoffset", ctypes.c_int),
                ("format", ctypes.c_int), ("data", ctypes.c_void_p), ("byte_order", ctypes.c_int),
                ("bitmap_unit", ctypes.c_int), ("bitmap_bit_order", ctypes.c_int), ("bitmap_pad", ctypes.c_int),
                ("depth", ctypes.c_int), ("bytes_per_line", ctypes.c_int), ("bits_per_pixel", ctypes.c_int)]


class Eyes:
    """Looks at the screen in a few milliseconds, often enough to see each picture of a video."""

    def __init__(self):
        self.x11 = ctypes.CDLL("libX11.so.6")
        self.x11.XOpenDisplay.restype = ctypes.c_void_p
        self.x11.XDefaultRootWindow.restype = ctypes.c_ulong
        self.x11.XDefaultRootWindow.argtypes = [ctypes.c_void_p]
        self.x11.XGetImage.restype = ctypes.POINTER(_Image)
        self.x11.XGetImage.argtypes = [ctypes.c_void_p, ctypes.c_ulong, ctypes.c_int, ctypes.c_int, ctypes.c_uint,
                                       ctypes.c_uint, ctypes.c_ulong, ctypes.c_int]
        self.x11.XDestroyImage.argtypes = [ctypes.POINTER(_Image)]
        self.display = self.x11.XOpenDisplay(None)
        self.root = self.x11.XDefaultRootWindow(self.display)

    def look(self, box):
        """The pixels of a box of the screen, row by row, as blue, green, red and an unused byte each."""
        x, y, width, height = box
        image = self.x11.XGetImage(self.display, self.root, x, y, width, height, 0xFFFFFFFF, 2)
        try:
            content = image.contents
            assert (content.bits_per_pixel, content.bytes_per_line) == (32, 4 * width)
            return ctypes.string_at(content.data, 4 * width * height)
        finally:
            self.x11.XDestroyImage(image)


def save_picture(pixels, width, height, path):
    """Writes what Eyes saw as a PNG."""
    subprocess.run(["ffmpeg", "-nostdin", "-v", "error", "-y", "-f", "rawvideo", "-pix_fmt", "bgr0", "-s",
                    f"{width}x{height}", "-i", "/dev/stdin", path], input=pixels, check=True)


class SoundServer:
    """A sound server of the test's own. Programs that are started find it, running or not, and no other."""

    def __init__(self, folder):
        self.folder = Path(folder)
        self.folder.mkdir(mode=0o700)
        self.socket = self.folder / "native"
        self.process = None
        self.recorder = None
        os.environ["PULSE_SERVER"] = f"unix:{self.socket}"
        os.environ["PULSE_RUNTIME_PATH"] = str(self.folder)
        os.environ["PULSE_COOKIE"] = str(self.folder / "cookie")  # else each program keeps one beside its settings

    def start(self):
        for left in ("native", "pid"):
            (self.folder / left).unlink(missing_ok=True)
        # Without "norewinds" the device's clock stands still for seconds.
        # pylint: disable=consider-using-with
        self.process = subprocess.Popen(
            ["pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1", "--disable-shm=yes", "-L",
             f"module-native-protocol-unix auth-anonymous=1 socket={self.socket}", "-L",
             "module-null-sink sink_name=nul norewinds=1"], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        until("the sound server", lambda: subprocess.run(["pactl", "info"], capture_output=True,
                                                         check=False).returncode == 0)

    def kill(self):
        if self.process:
            self.process.kill()
            self.process.wait()
            self.process = None

    def record(self, path):
        """Writes what the device plays from now on, 16 bit mono at 48 kHz."""
        # pylint: disable=consider-using-with
        with open(path, "wb") as tape:
            self.recorder = subprocess.Popen(
                ["parec", "--device=nul.monitor", "--format=s16le", "--rate=48000", "--channels=1", "--raw",
                 "--latency-msec=10"], stdout=tape, stderr=subprocess.DEVNULL)
        until("the tape to run", lambda: path.stat().st_size > 4800)

    def stop_recording(self):
        if self.recorder:
            self.recorder.terminate()
            self.recorder.wait()
            self.recorder = None

    def end(self):
        self.stop_recording()
        self.kill()

    def streams(self):
        """How many programs play something."""
        with contextlib.suppress(subprocess.CalledProcessError):
            out = subprocess.run(["pactl", "list", "short", "sink-inputs"], capture_output=True, text=True, check=True)
            return len(out.stdout.splitlines())
        return 0


def loudness(tape, seconds):
    """Root mean square, 0 to 1, of the last seconds of a running tape; waits for tape that is new."""
    wanted = tape.stat().st_size + int(seconds * 48000) * 2
    until("the tape to go on", lambda: tape.stat().st_size >= wanted)
    with open(tape, "rb") as file:
        file.seek(-int(seconds * 48000) * 2, 2)
        samples = array("h", file.read(int(seconds * 48000) * 2))
    return (sum(s * s for s in samples) / len(samples)) ** 0.5 / 32768


def pause_for_next(last, rate):
    """Sleeps until the next of `rate` moments a second. \\return that moment."""
    due = max(last + 1 / rate, time.monotonic())
    time.sleep(max(0.0, due - time.monotonic()))
    return due
