// The stages of one frame as cards. A card lays an "after" over a "before"; its slider moves the line between them.

const BLOCK = 8;  // side of the blocks that are finger or not, and of the background patches, in pixels

// Runs are y, x, length, y, x, length...
function pathOfRuns(runs) {
  let path = '';
  for (let i = 0; i < runs.length; i += 3) path += `M${runs[i + 1]} ${runs[i]}h${runs[i + 2]}v1h${-runs[i + 2]}z`;
  return path;
}

// The same with each mark as a block of its own.
function pathOfBlocks(runs) {
  let path = '';
  for (let i = 0; i < runs.length; i += 3) {
    for (let x = runs[i + 1]; x < runs[i + 1] + runs[i + 2]; x++) {
      path += `M${x * BLOCK} ${runs[i] * BLOCK}h${BLOCK}v${BLOCK}h${-BLOCK}z`;
    }
  }
  return path;
}

const mark = (tag, kind, properties) => svg(tag, { class: kind, ...properties });
const legend = (...entries) => el('ul', { class: 'legend' },
  ...entries.map(([kind, text]) => el('li', {}, kind ? el('span', { class: `swatch ${kind}` }) : null, text)));

// Builds the cards of one frame from its details.
class Stages {
  constructor(frame, details) {
    this.frame = frame;
    this.details = details;
  }

  picture(source, alt) {
    return el('img', { src: source, alt, width: this.frame.width, height: this.frame.height, draggable: 'false' });
  }

  overlay(...shapes) {
    const { width, height } = this.frame;
    return svg('svg', { viewBox: `0 0 ${width} ${height}`, class: 'overlay', 'aria-hidden': 'true' }, ...shapes);
  }

  card(id, title, text, content, ...below) {
    return el('figure', { class: 'card stage', id: `stage-${id}` },
      el('figcaption', {}, el('h3', {}, title), el('p', { class: 'muted' }, text)), content, ...below);
  }

  // At 0 % all of the "after" is seen, at 100 % nothing of it.
  compare(title, before, after, at) {
    const box = el('div', { class: 'compare', style: `--at: ${at}%` });
    const slider = el('input', {
      type: 'range', min: 0, max: 100, value: at, 'aria-label': `${title}: share that shows the frame before`,
      'aria-valuetext': `before up to ${at} % of the width`,
      input: () => {
        box.style.setProperty('--at', `${slider.value}%`);
        slider.setAttribute('aria-valuetext', `before up to ${slider.value} % of the width`);
      },
    });
    box.append(before, el('div', { class: 'after' }, ...after), el('span', { class: 'divider' }), el('span', { class: 'grip', 'aria-hidden': 'true' }), slider);
    return box;
  }

  stage(id, title, text, before, after, ...below) {
    const { images } = this.details;
    const name = baseName(this.frame.file);
    const content = this.compare(title, this.picture(images[before], `${name} before this step`),
      [this.picture(images[after], `${name} after this step`)], 50);
    return this.card(id, title, text, content, ...below);
  }

  marked(id, title, text, shapes, ...below) {
    const name = baseName(this.frame.file);
    const raw = this.details.images.raw;
    const content = this.compare(title, this.picture(raw, `${name} as it was read`),
      [this.picture(raw, `${name} with marks: ${title.toLowerCase()}`), this.overlay(...shapes)], 0);
    return this.card(id, title, text, content, ...below);
  }

  raw() {
    const content = el('div', { class: 'compare' },
      this.picture(this.details.images.raw, `${baseName(this.frame.file)} as it was read`));
    return this.card('raw', 'Raw', 'The frame as it was read.', content);
  }

  borders() {
    if (!this.details.images.borders) return null;
    return this.stage('borders', 'Borders', `Border lines replaced by copies of those inside: ${REPORT.settings.borders.join(', ')}.`,
      'raw', 'borders');
  }

  stripes() {
    if (!this.details.images.stripes) return null;
    const largest = Math.max(1, ...this.details.offsets.map(Math.abs));
    return this.stage('stripes', 'Stripes removed', 'Columns brighter or darker than those around them, set right.',
      this.details.images.borders ? 'borders' : 'raw', 'stripes', this.offsetPlot(largest),
      legend(['offset', `taken off each column, up to ${plural(largest, 'gray level')}`]));
  }

  // Bars that stand under the columns of the frame.
  offsetPlot(largest) {
    const { offsets } = this.details;
    const bars = offsets.map((offset, x) =>
      (offset === 0 ? '' : `M${x} 0h1v${-offset}h-1z`)).join('');
    return svg('svg', {
      viewBox: `0 ${-largest} ${offsets.length} ${2 * largest}`, preserveAspectRatio: 'none', class: 'plot', role: 'img',
      'aria-label': `Offset of each of ${offsets.length} columns, ${Math.min(...offsets)} to ${Math.max(...offsets)} gray levels`,
    }, svg('path', { d: bars, class: 'offset' }),
    svg('line', { x1: 0, x2: offsets.length, y1: 0, y2: 0, 'vector-effect': 'non-scaling-stroke' }));
  }

  balance() {
    if (!this.details.images.balance) return null;
    return this.stage('balance', 'Balance', `Brightness evened out, contrast stretched with a gain of ${this.frame.gain} ×.`,
      'stripes', 'balance');
  }

  directions() {
    const { blocks } = this.details;
    if (!blocks) return null;
    const strokes = { good: '', fair: '', weak: '' };
    blocks.direction.forEach((code, i) => {
      if (code < 0) return;
      const x = (i % blocks.columns + 0.5) * blocks.side, y = (Math.floor(i / blocks.columns) + 0.5) * blocks.side;
      const kind = blocks.deviation[i] >= 30 ? 'good' : blocks.deviation[i] >= 15 ? 'fair' : 'weak';
      const angle = (code - 1) * Math.PI / 8, reach = 0.38 * blocks.side;
      const dx = reach * Math.cos(angle), dy = -reach * Math.sin(angle);
      const line = `M${(x - dx).toFixed(1)} ${(y - dy).toFixed(1)}L${(x + dx).toFixed(1)} ${(y + dy).toFixed(1)}`;
      strokes[kind] += code === 0 ? `M${x} ${y}h.01` : line;
    });
    const shapes = Object.entries(strokes).flatMap(([kind, d]) =>
      [mark('path', 'casing', { d }), mark('path', `stroke ${kind}`, { d })]);
    return this.marked('directions', 'Block directions',
      `Dominant direction of each block of ${blocks.side} × ${blocks.side} pixels, a dot where none dominates.`, shapes,
      legend(['good', 'contrast 30 levels and more'], ['fair', '15 to 30'], ['weak', 'below 15']));
  }

  valid() {
    const { valid } = this.details;
    if (!valid) return null;
    const [x, y] = valid.centre ?? [];
    const cross = valid.centre
      ? [mark('path', 'casing', { d: `M${x - 5} ${y}h10M${x} ${y - 5}v10` }),
        mark('path', 'stroke centre', { d: `M${x - 5} ${y}h10M${x} ${y - 5}v10` })]
      : [];
    return this.marked('valid', 'Valid blocks', `${this.frame.coverage} % of the blocks are finger.`,
      [mark('path', 'valid', { d: pathOfBlocks(valid.runs) }), ...cross],
      legend(['valid', `finger: mean below ${this.frame.background}`],
        ...(valid.centre ? [['centre', `centre (${x}, ${y}), mean corner of these blocks`]] : [])));
  }

  background() {
    const { patches } = this.details;
    if (!patches) return null;
    const shapes = patches.map((patch) => mark('rect', patch.background ? 'patch yes' : 'patch no',
      { x: patch.x, y: patch.y, width: BLOCK, height: BLOCK }));
    const any = patches.some((patch) => patch.background);
    const rows = patches.map((patch) => el('tr', {}, el('th', { scope: 'row' }, patch.name), el('td', {}, patch.mean),
      el('td', {}, patch.variance.toFixed(1)), el('td', {}, patch.background ? 'yes' : 'no')));
    return this.marked('background', 'Background patches',
      any ? `Their mean less 7 % is the background value${REPORT.settings.background ? ' unless one is given' : `, ${this.frame.background}`}.`
        : 'No corner is bright and flat: no background found.', shapes,
      el('table', { class: 'small' }, el('caption', { class: 'hidden' }, 'Corner patches'),
        el('thead', {}, el('tr', {}, ...['Corner', 'Mean', 'Variance', 'Background'].map((text) => el('th', { scope: 'col' }, text)))),
        el('tbody', {}, ...rows)));
  }

  defects() {
    const { defects } = this.details;
    if (!defects) return null;
    const { width, height, bad_columns: columns, bad_rows: rows, bad_pixels: pixels } = this.frame;
    const shapes = [
      ...defects.columns.map((x) => mark('rect', 'line-mark', { x, y: 0, width: 1, height })),
      ...defects.rows.map((y) => mark('rect', 'line-mark', { x: 0, y, width, height: 1 })),
      mark('path', 'pixel-mark', { d: pathOfRuns(defects.runs) })];
    return this.marked('defects', 'Defects',
      this.frame.defects === 0 ? 'None found.' : 'What reads unlike its surroundings.', shapes,
      legend(['line-mark', `${plural(columns, 'column')}, ${plural(rows, 'row')}`], ['pixel-mark', plural(pixels, 'dead pixel')]));
  }

  bubbles() {
    const { bubbles } = this.details;
    if (!bubbles) return null;
    const share = 100 * this.frame.bubble_pixels / (this.frame.width * this.frame.height);
    return this.marked('bubbles', 'Bubbles', this.frame.bubble_pixels === 0 ? 'None found.'
      : 'Bright blobs. The uncovered sensor is bright as well: look where the finger lies.',
    [mark('path', 'bubble', { d: pathOfRuns(bubbles) })],
    legend(['bubble', `${this.frame.bubble_pixels} pixels, ${share.toFixed(1)} %`]));
  }

  // Bars on a square-root scale, so that a background peak leaves the ridges visible.
  grays() {
    const { histogram } = this.details;
    const top = Math.sqrt(Math.max(1, ...histogram)), height = 110;
    const bars = histogram.map((count, gray) =>
      (count === 0 ? '' : `M${gray} ${height}v${(-height * Math.sqrt(count) / top).toFixed(1)}h1V${height}z`)).join('');
    const limit = (kind, x) => svg('line', { class: kind, x1: x, x2: x, y1: 0, y2: height, 'vector-effect': 'non-scaling-stroke' });
    const thresholds = [15, 128, 200].map((x) => limit('class-limit', x));
    if (this.frame.background < 255) thresholds.push(limit('background-limit', this.frame.background));
    if (has(this.frame, 'mean')) thresholds.push(limit('mean-limit', this.frame.mean));
    const peak = histogram.indexOf(Math.max(...histogram));
    const graph = svg('svg', { viewBox: `0 0 256 ${height}`, preserveAspectRatio: 'none', class: 'grays', role: 'img',
      'aria-label': `Histogram of gray levels of the raw frame, peak at ${peak}` },
    svg('path', { d: bars }), ...thresholds);
    const ticks = axis([0, 0], ...[64, 128, 192].map((gray) => [100 * gray / 256, gray]), [100, 255]);
    return this.card('grays', 'Gray levels', 'Pixels of the raw frame at each level from 0 to 255, square-root scale.', graph, ticks,
      legend(
        ...(this.frame.background < 255 ? [['background-limit', `background value ${this.frame.background}`]] : []),
        ...(has(this.frame, 'mean') ? [['mean-limit', `finger gray ${this.frame.mean}`]] : []),
        ['class-limit', 'dark below 15, low below 128, high below 200']));
  }

  // Where the six profiles lie, and what they hold.
  profiles() {
    const { profiles } = this.details;
    if (!profiles) return null;
    const { width, height } = this.frame;
    const margin = 12;
    const lines = profiles.map(({ row, at }) => mark('path', row ? 'profile-row' : 'profile-column', {
      d: row ? `M${margin} ${at + 0.5}H${width - margin}` : `M${at + 0.5} ${margin}V${height - margin}` }));
    const strips = profiles.map(({ row, at, runs }) => {
      const paths = { 0: '', 254: '', 255: '' };
      let x = 0, dark = 0;
      for (let i = 0; i < runs.length; i += 2) {
        paths[runs[i]] += `M${x} 0h${runs[i + 1]}v1h${-runs[i + 1]}z`;
        if (runs[i] === 0) dark += runs[i + 1];
        x += runs[i + 1];
      }
      const name = `${row ? 'Row' : 'Column'} ${at}`, share = `${Math.round(100 * dark / x)} % dark`;
      return el('div', { class: 'profile' }, el('span', { class: row ? 'in-row' : 'in-column' }, name), svg('svg', {
        viewBox: `0 0 ${x} 1`, preserveAspectRatio: 'none', role: 'img', 'aria-label': `${name}: ${x} positions, ${share}`,
      }, svg('rect', { width: x, height: 1, class: 'bright' }), svg('path', { d: paths[0], class: 'dark' }),
      svg('path', { d: paths[254], class: 'saturated' })), el('span', { class: 'muted' }, share));
    });
    return this.marked('profiles', 'Template profiles',
      `Three rows and three columns, binarised; ${this.frame.template_size} bytes when coded.`, lines,
      el('div', { class: 'profiles' }, ...strips),
      legend(['dark', 'not brighter than its surroundings'], ['bright', 'brighter'], ['saturated', 'saturated, 254']));
  }

  cards() {
    return [this.raw(), this.borders(), this.stripes(), this.balance(), this.directions(), this.valid(), this.background(),
      this.defects(), this.bubbles(), this.grays(), this.profiles()].filter((card) => card !== null);
  }
}
