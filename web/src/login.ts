import { ApiError, api } from './api';
import { h } from './dom';
import { t } from './i18n';

// The sign-in form, shown instead of every page while the server wants a login and has none.
export function loginPage(main: HTMLElement, done: () => void): void {
  const name = h('input', { id: 'login-name', name: 'name', autocomplete: 'username', required: true });
  const password = h('input', { id: 'login-password', name: 'password', type: 'password', autocomplete: 'current-password', required: true });
  const message = h('p', { class: 'error', role: 'alert' });
  const form = h('form', { class: 'card narrow', 'aria-labelledby': 'login-title' },
    h('h1', { id: 'login-title' }, t('loginTitle')),
    h('div', { class: 'field' }, h('label', { for: 'login-name' }, t('loginName')), name),
    h('div', { class: 'field' }, h('label', { for: 'login-password' }, t('loginPassword')), password),
    message,
    h('button', { type: 'submit', class: 'primary' }, t('loginSubmit')));
  form.addEventListener('submit', async (event) => {
    event.preventDefault();
    message.textContent = '';
    try {
      await api.post('/login', { name: name.value, password: password.value });
      done();
    } catch (error) {
      const status = error instanceof ApiError ? error.status : 0;
      message.textContent = status === 429 ? t('loginLimited') : status === 401 ? t('loginFailed') : String((error as Error).message);
      password.select();
    }
  });
  main.replaceChildren(form);
  name.focus();
}
