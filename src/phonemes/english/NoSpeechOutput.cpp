// The audio calls of the statically linked espeak-ng, answered without a device. The project
// uses espeak-ng only to turn text into phonemes and never lets it speak, so the phonemizer
// never opens its output; should anything try, every call fails and nothing is played.
#include <pcaudiolib/audio.h>

extern "C" {

struct audio_object* create_audio_device_object(const char*, const char*, const char*)
{
    return nullptr;
}

int audio_object_open(struct audio_object*, enum audio_object_format, uint32_t, uint8_t)
{
    return -1;
}

void audio_object_close(struct audio_object*) {}

void audio_object_destroy(struct audio_object*) {}

int audio_object_write(struct audio_object*, const void*, size_t)
{
    return -1;
}

int audio_object_drain(struct audio_object*)
{
    return -1;
}

int audio_object_flush(struct audio_object*)
{
    return -1;
}

const char* audio_object_strerror(struct audio_object*, int)
{
    return "no speech output: espeak-ng is used as a phonemizer only";
}
}
