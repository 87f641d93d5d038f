// The factory parameter table. The definition texts are kept exactly as users have always
// seen them, with their leading blank, double blanks, trailing blanks and misspellings. Row 45
// (atu) accepts 87 although its text says 70, and f6 defaults to 4990 with a maximum of 4999:
// both on purpose.
#include "document/ParameterDefinition.h"

// clang-format off
const ParameterFactoryRow kFactoryParameters[kParameterCount] = {
//   name    definition                                                                    default  min   max  shown
    {"f0",   " f0 = Fundamental frequency (pitch) in 0.1 hertz ",                            1000,  500, 5000, 1},
    {"av",   " av = Amplitude of voicing in dB (0 - 87) ",                                     60,    0,   87, 1},
    {"ah",   " ah = Amplitude fo aspiration in dB (0 - 87) ",                                   0,    0,   87, 1},
    {"af",   " af = Amplitude of frication in dB (0 - 87)",                                     0,    0,   87, 1},
    {"tl",   " tl = Spectral tilt for voicing in dB (0 - 24)",                                  0,    0,   24, 1},
    {"f8",   " f8 = Eighth formant frequency in Hz (4000 - 7500) ",                          7500, 4000, 7500, 0},
    {"f7",   " f7 = Seventh formant frequency in Hz (4000 - 6500) ",                         6500, 4000, 6500, 0},
    {"f6",   " f6 = Sixth  formant frequency in Hz (1200 - 4999) ",                          4990, 1200, 4999, 0},
    {"f5",   " f5 = Fifth  formant frequency in Hz (1200 - 4999) ",                          3700, 1200, 4999, 1},
    {"f4",   " f4 = Fourth formant frequency in Hz (1200 - 4999) ",                          3250, 1200, 4999, 1},
    {"f3",   " f3 = Third  formant frequency in Hz (1200 - 4999) ",                          2500, 1200, 4999, 1},
    {"f2",   " f2 = Second formant frequency in Hz (550 - 3000) ",                           1500,  550, 3000, 1},
    {"f1",   " f1 = First  formant frequency in Hz (200 - 1300) ",                            500,  200, 1300, 1},
    {"b8",   " b8 = Eighth formant bandwidth in Hz (40 - 2000) ",                             600,   40, 2000, 0},
    {"b7",   " b7 = Seventh formant bandwidth in Hz (40 - 2000) ",                            500,   40, 2000, 0},
    {"b6",   " b6 = Sixth  formant bandwidth in Hz (40 - 2000) ",                             500,   40, 2000, 0},
    {"b5",   " b5 = Fifth  formant bandwidth in Hz (40 - 1000) ",                             200,   40, 1000, 1},
    {"b4",   " b4 = Fourth formant bandwidth in Hz (40 - 1000) ",                             200,   40, 1000, 1},
    {"b3",   " b3 = Third  formant bandwidth in Hz (40 - 1000) ",                             150,   40, 1000, 1},
    {"b2",   " b2 = Second formant bandwidth in Hz (40 - 1000) ",                              90,   40, 1000, 1},
    {"b1",   " b1 = First  formant bandwidth in Hz (40 - 1000) ",                              60,   40, 1000, 1},
    {"ab",   " ab = Amplitude of bypass for all amplitude controls in dB (0 - 87) ",           20,    0,   87, 1},
    {"a8f",  " a8f = Eighth formant parallel branch amplitude in dB (0 - 87) ",                30,    0,   87, 0},
    {"a7f",  " a7f = Seventh formant parallel branch amplitude in dB (0 - 87) ",               30,    0,   87, 0},
    {"a6f",  " a6f = Sixth  formant parallel branch amplitude in dB (0 - 87) ",                30,    0,   87, 0},
    {"a5f",  " a5f = Fifth  formant parallel branch amplitude in dB (0 - 87) ",                30,    0,   87, 1},
    {"a4f",  " a4f = Fourth formant parallel branch amplitude in dB (0 - 87) ",                30,    0,   87, 1},
    {"a3f",  " a3f = Third  formant parallel branch amplitude in dB (0 - 87) ",                30,    0,   87, 1},
    {"a2f",  " a2f = Second formant parallel branch amplitude in dB (0 - 87) ",                30,    0,   87, 1},
    {"a1f",  " a1f = First  formant parallel branch amplitude in dB (0 - 87) ",                30,    0,   87, 1},
    {"b8f",  " b8f = Eighth  formant parallel branch bandwidth in Hz (40 - 2000) ",          1500,   40, 2000, 0},
    {"b7f",  " b7f = Seventh formant parallel branch bandwidth in Hz (40 - 2000) ",          1500,   40, 2000, 0},
    {"b6f",  " b6f = Sixth  formant parallel branch bandwidth in Hz (40 - 2000) ",           1500,   40, 2000, 0},
    {"b5f",  " b5f = Fifth  formant parallel branch bandwidth in Hz (40 - 1000) ",            500,   40, 1000, 1},
    {"b4f",  " b4f = Fourth formant parallel branch bandwidth in Hz (40 - 1000) ",            350,   40, 1000, 1},
    {"b3f",  " b3f = Third  formant parallel branch bandwidth in Hz (40 - 1000) ",            320,   40, 1000, 1},
    {"b2f",  " b2f = Second formant parallel branch bandwidth in Hz (40 - 1000) ",            250,   40, 1000, 1},
    {"b1f",  " b1f = First  formant parallel branch bandwidth in Hz (40 - 1000) ",            180,   40, 1000, 1},
    {"fnz",  " fnz = Nasal zero frequency in Hz (248 - 528) ",                                280,  248,  528, 1},
    {"bnz",  " bnz = Nasal zero bandwidth in Hz (40 - 1000) ",                                 90,   40, 1000, 1},
    {"fnp",  " fnp = Nasal pole frequency in Hz (248 - 528) ",                                280,  248,  528, 1},
    {"bnp",  " bnp = Nasal pole bandwidth in Hz (40 - 1000) ",                                 90,   40, 1000, 1},
    {"oq",   " oq =  Number of samples in an open period (10 - 65) ",                          20,   10,   65, 0},
    {"anv",  " anv = Amplitude of parallel nasal pole in dB (0 - 87) ",                        20,    0,   87, 0},
    {"apv",  " apv = Amplitue of voicing in parrallel branch in dB (0 - 87) ",                  0,    0,   87, 1},
    {"atu",  " atu = Amplitude of breathiness in voicing in dB (0 - 70) ",                     40,    0,   87, 0},
    {"skew", " skew = Shewness of alternate periods in sample#/2 (0 - 40) ",                    0,    0,   40, 0},
    {"gain", " gain = Overall gain in dB (0 - 87) ",                                           60,    0,   87, 0},
};
// clang-format on
