// The summary: a histogram for each of the main measures, with limits that filter the frames.

const BINS = 20;

// Bins as { low, high }, of values from low up to, but not including, high; the last takes the end of the axis too.
function binsOf(measure, values) {
  if (measure.decades) {
    const bins = [{ low: 0, high: 1, label: 0 }];
    for (let low = 1; low <= Math.max(1, ...values); low *= 10) {
      bins.push({ low, high: low * 10, label: low < 1000 ? low : `${low / 1000}k` });
    }
    return bins;
  }
  const [low, high] = measure.scale;
  const step = (high - low) / BINS;
  return Array.from({ length: BINS }, (_, i) => ({ low: low + i * step, high: low + (i + 1) * step }));
}

function binIndex(bins, value) {
  const index = bins.findIndex((bin) => value < bin.high);
  return index < 0 ? bins.length - 1 : index;
}

const GRAPH = { width: 200, height: 50 };

// One histogram; show(frames) draws the ones that pass the filters over all.
class Histogram {
  constructor(measure, frames) {
    this.measure = measure;
    this.values = frames.filter((frame) => has(frame, measure.key)).map((frame) => frame[measure.key]);
    this.bins = binsOf(measure, this.values);
    this.total = this.count(this.values);
    this.graph = svg('svg', {
      viewBox: `0 0 ${GRAPH.width} ${GRAPH.height}`, preserveAspectRatio: 'none', role: 'img', class: 'histogram' });
    this.axis = axis(...this.labels());
    this.figures = el('p', { class: 'figure' });
  }

  count(values) {
    const counts = this.bins.map(() => 0);
    for (const value of values) counts[binIndex(this.bins, value)]++;
    return counts;
  }

  bar(kind, counts, i) {
    const width = GRAPH.width / this.bins.length;
    const height = GRAPH.height * counts[i] / Math.max(1, ...this.total);
    const visible = counts[i] === 0 ? 0 : Math.max(1.5, height);
    const bin = this.bins[i];
    const last = i === this.bins.length - 1 || this.measure.decades ? '' : ', upper end left out';
    const tip = this.measure.decades && bin.low === 0 ? '0' : `${+bin.low.toFixed(1)} to ${+bin.high.toFixed(1)}${last}`;
    return svg('rect', { class: kind, x: i * width + 0.5, y: GRAPH.height - visible, width: width - 1, height: visible },
      svg('title', {}, `${tip} ${this.measure.unit}: ${plural(counts[i], 'frame')}`));
  }

  labels() {
    if (this.measure.decades) {
      return this.bins.map((bin, i) => [100 * (i + 0.5) / this.bins.length, bin.label]);
    }
    const [low, high] = this.measure.scale;
    const middle = high % 2 === 0 ? [[50, (low + high) / 2]] : [];
    return [[0, low], ...middle, [100, high]];
  }

  show(frames) {
    const values = frames.filter((frame) => has(frame, this.measure.key)).map((frame) => frame[this.measure.key]);
    const passing = this.count(values);
    const each = (kind, counts) => this.bins.map((_, i) => this.bar(kind, counts, i));
    this.graph.replaceChildren(...each('all', this.total), ...each('passing', passing));
    const unit = this.measure.unit;
    const middle = median(values);
    const span = values.length === 0 ? 'no frames' : `${Math.min(...values)} to ${Math.max(...values)}`;
    this.figures.replaceChildren(el('strong', {}, middle === null ? '–' : String(middle)), ` ${unit}`,
      el('span', { class: 'muted' }, middle === null ? span : `median of ${span}`));
    this.graph.setAttribute('aria-label',
      `Histogram of ${this.measure.label.toLowerCase()} over ${plural(values.length, 'frame')}: median ${middle ?? 'none'}, ${span} ${unit}`);
  }
}

// Fills the summary. Returns show(frames) and the limits, by key of the measure.
function makeSummary(frames, changed) {
  const limits = {};
  const histograms = [];
  for (const measure of MEASURES.filter((one) => one.summary)) {
    const histogram = new Histogram(measure, frames);
    histograms.push(histogram);
    limits[measure.key] = { low: null, high: null };
    const input = (end, word) => el('label', {}, el('span', {}, word), el('input', {
      type: 'number', form: 'filters', min: 0, step: 'any', inputmode: 'decimal', 'data-limit': `${measure.key}-${end}`,
      'aria-label': `${measure.label}, ${word} ${measure.unit}`,
      input: (event) => {
        limits[measure.key][end] = event.target.value === '' ? null : event.target.valueAsNumber;
        changed();
      },
    }));
    document.getElementById('summary').append(el('section', { class: 'card measure', 'aria-label': measure.label },
      el('h3', {}, measure.label), histogram.figures, histogram.graph, histogram.axis,
      el('div', { class: 'limits' }, input('low', 'from'), input('high', 'to')),
      el('p', { class: 'muted' }, measure.text)));
  }
  return {
    limits,
    clear() { for (const limit of Object.values(limits)) limit.low = limit.high = null; },
    show(passing) { for (const histogram of histograms) histogram.show(passing); },
  };
}
