#pragma once

/// What docs/calibration.md says around its figures.
namespace qv5123::calibration_text {

inline constexpr char kStart[] = R"(# How well the calibrations work

The simulated chip's camera ([simulator.md](simulator.md)) is known exactly, so what the lens shading page and the linear
matrix page find can be held against the truth. This page, figures and all, is written by

    ./bench --calibration

which runs the pages' own flows, from the picker's first register to the last parameter sent, against the chip on a
hand-moved clock. With noise the figures are means over the seeds 1 to 8.

## The truth

| | red | green | blue |
|---|---|---|---|
| lamp (4100 K) | 1.05 | 1.00 | 0.55 |
| red pixels take | 0.78 | 0.17 | 0.05 |
| green pixels take | 0.12 | 0.75 | 0.13 |
| blue pixels take | 0.04 | 0.23 | 0.73 |
| lens, a | 1.05 | 0.95 | 1.15 |
| lens, b | -1.20 | -1.10 | -1.30 |

The usual lens lets through 1 / (1 + a d^2 + b d^4), d being pixels / 2048 from a centre 13 pixels right of the middle: the
reciprocal of what the chip can do. The lenses `cos4` and `steep` are not, and have a centre of their own for each colour. Noise
`low` is 0.8 counts from reading out and the light's own of variance 0.02 x level, `high` 2.5 counts and 0.12 x level.

## Lens shading

The largest over the smallest reading of the picker over the 9 x 5 places of "Check field", corners included, less 1, in percent, of
the worst colour. "None" is with parameters of 0, "stated" with those that "CALIBRATION" fits, "offered" with Parameter-1 fitted alone
where the other came out below 0 and the page offers that. "Best" is the least that any two parameters of 0 and above can leave without
noise and without rounding to counts.

| scene | noise | none | stated | offered | best |
|---|---|---|---|---|---|
)";

inline constexpr char kMatrix[] = R"(
With the usual lens the stated fit is as good as the method: a parabola is fitted to find the brightest level, a lens falls off less
steeply far out than a parabola, so the level comes out about 1 % low, and it is cut to whole counts. A lens that falls off by cos^4
needs a gain that grows faster than d^2, which a Parameter-2 of 0 and above cannot give: what was fitted with a negative one loses its
better half when that becomes 0, and Parameter-1 alone comes closer.

## Colour matrix

After a lens shading calibration ("offered") all 24 patches are read with "GET COLOR", at their middles. "Patches" is how many of them
are measured: one that reads 0 in a color is not. Mean CIEDE2000:

- "fitted": of the patches as read, balanced as the chip does it, against the page's table, without a matrix ("none"), with that of
  "Calculate" and with that of "Fit color difference", which minimises this together with the way from the former: the fewer counts there
  are, the more that way costs;
- "left out": the same of each patch with the matrix fitted to all others;
- "truth": of the patches as the sensor sees them without noise against what stands in front of the camera, which no page knows;
- "best": the same with the best 3 x 3 matrix there is, whatever its rows sum to; of seed 1 alone.

| scene | noise | patches | fitted: none | Calculate | color difference | left out: Calculate | color difference | truth: none | Calculate | color difference | best |
|---|---|---|---|---|---|---|---|---|---|---|---|
)";

inline constexpr char kEnd[] = R"(
"Fit color difference" is closer on the patches that it was fitted to wherever there is a choice. On patches left out,
and against the truth, it gains most where something is wrong that a matrix can help with: a warm lamp, stray light, clipped patches.
On a good picture both come to nearly the same matrix, and the gain is a few hundredths on patches left out, 0.1 to 0.2 against the
truth. On an underexposed and noisy one, where a count is a tenth of a patch, it is held close to "Calculate" and stays ahead on patches
left out by a hundredth or two at most, in the mean and not with every seed. Against the truth it is no closer there: least squares
listens to the bright patches, which noise changes least.

## What the figures cannot show

A simulated sensor mixes colours by nine numbers, so that a 3 x 3 matrix can undo all of it but the metamerism that was put there. A real
one has spectra of its own, and what it takes two paints for depends on the lamp: 4 % for each patch stands for that here, drawn once for
ever. The chart's paints differ from print to print and fade; its published colours are means. Real stray light has the shape of what is
bright, real noise has rows and columns, real lenses shade by tilt and dust as well, and a real picker may not measure what the picture
shows. So the figures compare ways of fitting with each other, and tell mistakes; how close a camera on a desk will come they do not
tell. Measure it: the page's differences, "Patches left out", "Check field", and a second chart.
)";

}  // namespace qv5123::calibration_text
