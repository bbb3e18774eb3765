// The questions that are asked before something happens.
import {sectionById} from '../model/sections';
import {answerDialog} from '../state/dialog';
import {get} from '../state/store';
import {t} from '../words';
import {ChangeTable} from './parts/ChangeTable';
import {Modal} from './parts/Modal';

const Move = ({where}: {where: string}) => <div class="notice" data-move={where}>
  <p>{t('move.text', {where})}</p><p>{t('move.hint')}</p>
</div>;

export function Dialogs() {
  const {dialog} = get();
  if (!dialog) return null;
  switch (dialog.kind) {
    case 'review':
      return <Modal title={t('review.title', {section: t(sectionById(dialog.section).title)})}
        go={t('save')} onAnswer={answerDialog}>
        <ChangeTable rows={dialog.rows} />
        {dialog.move && <Move where={dialog.move} />}
      </Modal>;
    case 'leave':
      return <Modal title={t('leave.title')} go={t('leave')} onAnswer={answerDialog}>
        <p>{t('leave.text')}</p>
        <ul>{dialog.pages.map((page) => <li key={page}>{t(`page.${page}`)}</li>)}</ul>
      </Modal>;
    case 'import':
      return <Modal title={t('import.title')} go={t('import.go')} onAnswer={answerDialog}>
        <p>{t('import.question', {count: dialog.count})}</p>
        {dialog.move && <Move where={dialog.move} />}
      </Modal>;
  }
}
