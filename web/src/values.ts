import { h } from './dom';
import { PossibleValue } from './guia';

// The accepted values of a field as a list the clerk may pick from.
export function valueList(values: PossibleValue[], pick?: (code: string) => void): HTMLElement {
  return h('ul', { class: 'values' }, values.map((v) => {
    const label = v.minimum !== undefined || v.maximum !== undefined
      ? `${v.minimum ?? ''} – ${v.maximum ?? ''}`
      : `${v.code ?? ''}${v.designation ? ` — ${v.designation}` : ''}`;
    if (!pick || v.code === undefined) return h('li', {}, label);
    const button = h('button', { type: 'button' }, label);
    button.addEventListener('click', () => pick(v.code!));
    return h('li', {}, button);
  }));
}
