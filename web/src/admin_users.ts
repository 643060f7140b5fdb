import { ApiError, api, listIn } from './api';
import { confirmDialog } from './confirm';
import { clear, h } from './dom';
import { t } from './i18n';

interface User {
  name: string;
  role: string;
}

// The people who may sign in, and their roles.
export async function usersPage(main: HTMLElement): Promise<void> {
  const list = h('div', { 'aria-live': 'polite' });
  const message = h('div', { class: 'notice', role: 'status' });
  const error = h('div', { class: 'notice bad', role: 'alert' });
  const name = h('input', { id: 'user-name', name: 'name', autocomplete: 'off', required: true });
  const password = h('input', { id: 'user-password', name: 'password', type: 'password', autocomplete: 'new-password', required: true });
  const role = h('select', { id: 'user-role', name: 'role' }, h('option', { value: 'clerk' }, t('roleClerk')), h('option', { value: 'admin' }, t('roleAdmin')));

  async function show(): Promise<void> {
    const users = listIn<User>(await api.get<unknown>('/users'), 'users');
    clear(list);
    if (!users.length) {
      list.append(h('p', { class: 'muted' }, t('noUsers')));
      return;
    }
    list.append(h('table', {}, h('caption', { class: 'skip' }, t('navUsers')),
      h('thead', {}, h('tr', {}, h('th', { scope: 'col' }, t('loginName')), h('th', { scope: 'col' }, t('role')), h('th', { scope: 'col' }, t('actions')))),
      h('tbody', {}, users.map((u) => {
        const remove = h('button', { type: 'button', class: 'danger' }, t('delete'));
        remove.addEventListener('click', async () => {
          if (!(await confirmDialog(t('deleteUserTitle', { name: u.name }), [], t('deleteConfirm')))) return;
          try {
            await api.del(`/users/${encodeURIComponent(u.name)}`);
            message.textContent = t('userDeleted', { name: u.name });
            await show();
          } catch (e) {
            error.textContent = e instanceof ApiError ? e.message : String(e);
          }
        });
        return h('tr', {}, h('td', {}, u.name), h('td', {}, u.role === 'admin' ? t('roleAdmin') : t('roleClerk')), h('td', {}, remove));
      }))));
  }

  const form = h('form', { class: 'card', 'aria-labelledby': 'new-user-title' },
    h('h2', { id: 'new-user-title' }, t('newUser')),
    h('div', { class: 'fields' },
      h('div', { class: 'field' }, h('label', { for: 'user-name' }, t('loginName')), name),
      h('div', { class: 'field' }, h('label', { for: 'user-password' }, t('loginPassword')), password),
      h('div', { class: 'field' }, h('label', { for: 'user-role' }, t('role')), role)),
    error,
    h('div', { class: 'actions' }, h('button', { type: 'submit', class: 'primary' }, t('addUser'))));
  form.addEventListener('submit', async (event) => {
    event.preventDefault();
    error.textContent = '';
    try {
      await api.post('/users', { name: name.value.trim(), password: password.value, role: role.value });
      message.textContent = t('userAdded', { name: name.value.trim() });
      form.reset();
      await show();
    } catch (e) {
      error.textContent = e instanceof ApiError ? e.message : String(e);
    }
  });
  main.replaceChildren(h('h1', {}, t('navUsers')), message, h('section', { class: 'card' }, list), form);
  await show();
}
