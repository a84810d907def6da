// The table of frames: one row each, sorted by a column, filtered by text, result and limits.

const RESULTS = { done: 'done', refused: 'refused', unreadable: 'unreadable' };

const COLUMNS = [
  { key: 'file', label: 'Frame', value: (frame) => frame.file },
  { key: 'size', label: 'Size', unit: 'pixels', text: 'Width and height of the frame.',
    value: (frame) => (frame.width ? frame.width * frame.height : null),
    show: (frame) => (frame.width ? `${frame.width} × ${frame.height}` : null) },
  ...MEASURES.filter((measure) => measure.table).map((measure) => ({
    ...measure, value: (frame) => (has(frame, measure.key) ? frame[measure.key] : null),
  })),
  { key: 'result', label: 'Result', value: (frame) => RESULTS[frame.result] },
];

// Frames without a value come last, whichever way the column is sorted.
function compare(column, descending) {
  return (a, b) => {
    const x = column.value(a), y = column.value(b);
    if (x === null || y === null) return (x === null) - (y === null);
    const order = typeof x === 'string' ? x.localeCompare(y, 'en', { numeric: true }) : x - y;
    return descending ? -order : order;
  };
}

function fileCell(frame, common) {
  const name = baseName(frame.file), folder = frame.file.slice(common.length, frame.file.length - name.length);
  const readable = frame.result !== 'unreadable';
  return el('th', { scope: 'row' }, el('div', { class: 'file' },
    el('span', { class: frame.thumbnail ? 'thumbnail' : 'thumbnail none', 'aria-hidden': 'true' },
      frame.thumbnail ? el('img', { ...frame.thumbnail, alt: '' }) : '×'),
    el('span', { class: 'names' },
      readable ? el('a', { href: `#frame=${frame.index}` }, name) : el('span', {}, name),
      folder === '' ? null : el('span', { class: 'muted folder' }, folder),
      ...frame.problems.map((problem) => el('span', { class: 'problem' }, problem)))));
}

function rowOf(frame, common) {
  const cells = COLUMNS.slice(1).map((column) => {
    const value = column.show ? column.show(frame) : column.value(frame);
    return el('td', { class: column.key === 'result' ? `result ${frame.result}` : 'number' },
      value === null ? el('span', { class: 'muted' }, '–') : String(value));
  });
  return el('tr', {}, fileCell(frame, common), ...cells);
}

class FrameTable {
  constructor(frames) {
    this.frames = frames;
    this.column = null;  // in the order of the command line until a column is chosen
    this.descending = false;
    const common = commonFolder(frames.map((frame) => frame.file));
    this.rows = frames.map((frame) => rowOf(frame, common));
    this.body = el('tbody');
    this.headings = COLUMNS.map((column) => this.heading(column));
    const widest = Math.max(40, ...frames.map((frame) => frame.thumbnail?.width ?? 0));
    const table = document.getElementById('table');
    table.style.setProperty('--thumbnail', `${widest}px`);
    table.append(
      el('caption', {}, el('span', {}, 'The headings sort; a name opens the stages of its frame.')),
      el('thead', {}, el('tr', {}, ...this.headings)), this.body);
  }

  heading(column) {
    return el('th', { scope: 'col', 'aria-sort': 'none', class: ['file', 'result'].includes(column.key) ? '' : 'number' },
      el('button', { type: 'button', title: column.text, click: () => this.sort(column) },
        el('span', {}, column.short ?? column.label), el('span', { class: 'unit' }, column.unit ?? '')));
  }

  sort(column) {
    this.descending = this.column === column && !this.descending;
    this.column = column;
    COLUMNS.forEach((one, i) => {
      const direction = one !== column ? 'none' : this.descending ? 'descending' : 'ascending';
      this.headings[i].setAttribute('aria-sort', direction);
    });
    this.show(this.passing);
  }

  // Shows the frames that pass the filters, in the order of the table; that order is kept for leafing through details.
  show(passing) {
    this.passing = passing;
    this.order = this.column ? [...passing].sort(compare(this.column, this.descending)) : passing;
    const empty = el('tr', {}, el('td', { colspan: COLUMNS.length, class: 'muted' }, 'No frame passes the filters.'));
    this.body.replaceChildren(...(this.order.length > 0 ? this.order.map((frame) => this.rows[frame.index]) : [empty]));
  }
}

function passes(frame, text, result, limits) {
  const words = `${frame.file} ${frame.problems.join(' ')}`.toLowerCase();
  if (!words.includes(text) || (result !== '' && frame.result !== result)) return false;
  return Object.entries(limits).every(([key, { low, high }]) => {
    if (low === null && high === null) return true;
    return has(frame, key) && (low === null || frame[key] >= low) && (high === null || frame[key] <= high);
  });
}
