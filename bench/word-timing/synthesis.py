"""Speech whose words have known times: flite and espeak-ng, by their libraries, which tell where each sound lies.

A word is (text, begin, end) in samples of the speech. Needs flite, espeak-ng and nothing but the standard library.
"""
import array
import ctypes
import functools

RATE = 16000


class _Wave(ctypes.Structure):
    _fields_ = [("type", ctypes.c_char_p), ("rate", ctypes.c_int), ("count", ctypes.c_int),
                ("channels", ctypes.c_int), ("samples", ctypes.POINTER(ctypes.c_short))]


@functools.cache
def _flite():
    library = ctypes.CDLL("libflite.so.1", mode=ctypes.RTLD_GLOBAL)
    for needed in ("libflite_cmulex.so.1", "libflite_usenglish.so.1"):
        ctypes.CDLL(needed, mode=ctypes.RTLD_GLOBAL)
    pointer, text = ctypes.c_void_p, ctypes.c_char_p
    for name, result, arguments in (
            ("flite_synth_text", pointer, [text, pointer]), ("utt_wave", ctypes.POINTER(_Wave), [pointer]),
            ("utt_relation", pointer, [pointer, text]), ("relation_head", pointer, [pointer]),
            ("item_next", pointer, [pointer]), ("item_feat_string", text, [pointer, text]),
            ("item_feat_float", ctypes.c_float, [pointer, text]), ("path_to_item", pointer, [pointer, text]),
            ("delete_utterance", None, [pointer])):
        function = getattr(library, name)
        function.restype, function.argtypes = result, arguments
    library.flite_init()
    return library


@functools.cache
def _voice(name):
    _flite()
    register = getattr(ctypes.CDLL(f"libflite_cmu_us_{name}.so.1", mode=ctypes.RTLD_GLOBAL), f"register_cmu_us_{name}")
    register.restype, register.argtypes = ctypes.c_void_p, [ctypes.c_char_p]
    return register(None)


def flite(voice, text):
    """(samples, words): 16 bits, 16 kHz. The text must be one utterance: no full stop but at its end."""
    library = _flite()
    utterance = library.flite_synth_text(text.encode(), _voice(voice))
    wave = library.utt_wave(utterance).contents
    assert wave.rate == RATE
    samples = array.array("h", wave.samples[:wave.count])
    words, begin, last = [], 0, None
    segment = library.relation_head(library.utt_relation(utterance, b"Segment"))
    while segment:
        end = round(library.item_feat_float(segment, b"end") * RATE)
        word = library.path_to_item(segment, b"R:SylStructure.parent.parent")
        if word and word == last:
            words[-1][2] = end
        elif word:
            name = library.item_feat_string(word, b"name").decode().lower()
            if name.startswith("'") and words:  # "fox" and "'s" are heard as one word
                words[-1][0] += name
                words[-1][2] = end
            else:
                words.append([name, begin, end])
        last, begin = word, end
        segment = library.item_next(segment)
    library.delete_utterance(utterance)
    return samples, [(name, a, min(b, len(samples))) for name, a, b in words]


class _Event(ctypes.Structure):
    _fields_ = [("type", ctypes.c_int), ("identifier", ctypes.c_uint), ("position", ctypes.c_int),
                ("length", ctypes.c_int), ("milliseconds", ctypes.c_int), ("sample", ctypes.c_int),
                ("user", ctypes.c_void_p), ("name", ctypes.c_char * 8)]


_CALLBACK = ctypes.CFUNCTYPE(ctypes.c_int, ctypes.POINTER(ctypes.c_short), ctypes.c_int, ctypes.POINTER(_Event))
_WORD, _END, _PHONEME = 1, 5, 7


@functools.cache
def _espeak():
    library = ctypes.CDLL("libespeak-ng.so.1")
    retrieval, phoneme_events = 1, 1
    rate = library.espeak_Initialize(retrieval, 0, None, phoneme_events)
    return library, rate


def espeak(language, text):
    """(samples at 22.05 kHz resampled to 16 kHz, words). A word ends where the next begins or a pause does."""
    library, rate = _espeak()
    samples, events = array.array("h"), []

    @_CALLBACK
    def take(wave, count, event):
        if wave and count:
            samples.extend(wave[:count])
        while event and event.contents.type:
            found = event.contents
            events.append((found.type, found.sample, found.name, found.position, found.length))
            event = ctypes.cast(ctypes.addressof(found) + ctypes.sizeof(_Event), ctypes.POINTER(_Event))
        return 0

    library.espeak_SetSynthCallback(take)
    if library.espeak_SetVoiceByName(language.encode()) != 0:
        raise RuntimeError(f"espeak-ng has no voice {language}")
    encoded = text.encode()
    library.espeak_Synth(encoded, len(encoded) + 1, 0, 1, 0, 1, None, None)
    library.espeak_Synchronize()
    words = []
    for kind, sample, name, position, length in events:
        if kind == _WORD:
            if words and words[-1][2] is None:
                words[-1][2] = sample
            words.append([text[position - 1:position - 1 + length].lower(), sample, None])
        elif kind == _END or (kind == _PHONEME and name.startswith(b"_")):
            if words and words[-1][2] is None and sample > words[-1][1]:
                words[-1][2] = sample
    scale = RATE / rate
    words = [(w, round(a * scale), round((len(samples) if b is None else b) * scale)) for w, a, b in words]
    spoken = _resampled(samples, rate)
    return spoken, [w for w in words if any(spoken[w[1]:w[2]])]  # some are told and not spoken


def _resampled(samples, rate):
    """Linear between samples: what it adds lies above what the recognisers and the levels look at."""
    count = (len(samples) - 1) * RATE // rate
    out = array.array("h", bytes(2 * count))
    for i in range(count):
        place = i * rate / RATE
        k = int(place)
        out[i] = round(samples[k] + (samples[k + 1] - samples[k]) * (place - k))
    return out
