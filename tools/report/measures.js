// The figures of a frame: how they are named, in which unit they count, and what they say.
//   scale   ends of the axis of the histogram
//   decades bins of 0, 1 to 9, 10 to 99 and so on, for counts that are mostly 0
const MEASURES = [
  { key: 'coverage', label: 'Coverage', unit: '%', scale: [0, 100], summary: true, table: true,
    text: 'Share of the blocks of 8 × 8 pixels that are finger, that is darker than the background value.' },
  { key: 'quality', label: 'Quality', unit: 'of 100', scale: [0, 100], summary: true, table: true,
    text: 'Sensor score from a few pixels of every block: directions, contrast and brightness.' },
  { key: 'field_quality', label: 'Field quality', unit: 'of 100', scale: [0, 100], summary: true, table: true,
    text: 'Score from the dense field of ridge orientations of the half-size frame.' },
  { key: 'snr', label: 'Signal to noise', short: 'SNR', unit: 'ratio', scale: [0, 255], summary: true, table: true,
    text: '10 × variance of the signal ÷ (variance of the noise + 1), median of the blocks, 255 at most.' },
  { key: 'defects', label: 'Defects', unit: 'pixels', decades: true, summary: true, table: true,
    text: 'Pixels on broken columns and rows, and those of dead clusters.' },
  { key: 'bubble_pixels', label: 'Bubbles', unit: 'pixels', decades: true, summary: true, table: true,
    text: 'Bright blobs, the uncovered sensor among them: four standard deviations of a typical block above the mean gray.' },
  { key: 'mean', label: 'Finger gray', unit: 'level', scale: [0, 255], table: true,
    text: 'Mean gray of the blocks that are finger, from 0 (black) to 255 (white).' },
  { key: 'background', label: 'Background', unit: 'level', scale: [0, 255], table: true,
    text: 'Gray below which a block is finger; 255 when no corner of the frame looks like background.' },
  { key: 'gain', label: 'Gain', unit: '×', table: true,
    text: 'Contrast gain of the gray balance: the higher, the paler the ridges were.' },
  { key: 'signal', label: 'Signal', unit: 'levels', text: 'Amplitude of what smoothing keeps, in the typical block.' },
  { key: 'noise', label: 'Noise', unit: 'levels', text: 'Amplitude of what smoothing takes away, in the same block.' },
  { key: 'bad_columns', label: 'Broken columns', unit: 'columns', text: 'Columns that read unlike those beside them.' },
  { key: 'bad_rows', label: 'Broken rows', unit: 'rows', text: 'Rows that read unlike those beside them.' },
  { key: 'bad_pixels', label: 'Dead pixels', unit: 'pixels',
    text: 'Four for each pixel of a dark cluster in the half-size frame.' },
  { key: 'template_size', label: 'Template', unit: 'bytes', text: 'Size of the coded template.' },
];

const plural = (count, word) => `${count} ${word}${count === 1 ? '' : 's'}`;
const unitOf = (measure, value) => (value === 1 ? measure.unit.replace(/s$/, '') : measure.unit);
const has = (frame, key) => typeof frame[key] === 'number';
const baseName = (file) => file.slice(file.lastIndexOf('/') + 1);

// Folder that all frames lie in, for the rows to leave out.
function commonFolder(files) {
  const folders = files.map((file) => file.slice(0, file.length - baseName(file).length));
  const parts = (folders[0] ?? '').split('/').slice(0, -1).map((part) => `${part}/`);
  while (!folders.every((folder) => folder.startsWith(parts.join('')))) parts.pop();
  return parts.join('');
}

function median(values) {
  const sorted = [...values].sort((a, b) => a - b);
  return sorted.length === 0 ? null : sorted[sorted.length >> 1];
}

// Makes an element: el('p', { class: 'muted' }, 'text', child). Properties that are functions are event listeners.
function build(element, properties, children) {
  for (const [name, value] of Object.entries(properties ?? {})) {
    if (typeof value === 'function') element.addEventListener(name, value);
    else if (value === true) element.setAttribute(name, '');
    else if (value !== false && value !== null && value !== undefined) element.setAttribute(name, value);
  }
  element.append(...children.filter((child) => child !== null && child !== undefined));
  return element;
}
const el = (tag, properties, ...children) => build(document.createElement(tag), properties, children);
// Labels below a graph: [place in percent, text]... What the graph says is in its own label.
const axis = (...labels) => el('div', { class: 'axis', 'aria-hidden': 'true' }, ...labels.map(([place, text]) =>
  el('span', { style: `left: ${place}%`, class: place === 0 ? 'first' : place === 100 ? 'last' : null }, text)));
const svg = (tag, properties, ...children) =>
  build(document.createElementNS('http://www.w3.org/2000/svg', tag), properties, children);
